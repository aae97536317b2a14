// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/twopartstream.h"

#include <algorithm>
#include <cstdio>

namespace pdf {

namespace {

struct TwoParts
{
    std::string_view first;
    std::string_view second;
};

/// Makes [rp, wp) the bytes from the position (where wp is) to the end of the part it is in.
int takePart(fz_context * /*context*/, fz_stream *stream, std::size_t /*wanted*/)
{
    const auto *parts = static_cast<const TwoParts *>(stream->state);
    const auto position = static_cast<std::size_t>(stream->pos);
    const std::size_t start = parts->first.size();
    const std::string_view part =
        position < start ? parts->first.substr(position)
                         : parts->second.substr(std::min(position - start, parts->second.size()));
    if (part.empty())
        return EOF;
    // MuPDF reads through a pointer that could write, but does not.
    stream->rp = const_cast<unsigned char *>(reinterpret_cast<const unsigned char *>(part.data()));
    stream->wp = stream->rp + part.size();
    stream->pos += static_cast<std::int64_t>(part.size());
    return *stream->rp++;
}

void seek(fz_context * /*context*/, fz_stream *stream, std::int64_t offset, int whence)
{
    const auto *parts = static_cast<const TwoParts *>(stream->state);
    const auto size = static_cast<std::int64_t>(parts->first.size() + parts->second.size());
    if (whence == SEEK_END)
        offset += size;
    stream->pos = std::clamp<std::int64_t>(offset, 0, size);
    stream->rp = stream->wp;
}

} // namespace

fz_stream *openTwoParts(fz_context *context, std::string_view first, std::string_view second)
{
    auto *parts = static_cast<TwoParts *>(fz_malloc(context, sizeof(TwoParts)));
    *parts = {first, second};
    // Frees them also when it fails.
    fz_stream *stream = fz_new_stream(context, parts, takePart, fz_free);
    stream->seek = seek;
    return stream;
}

} // namespace pdf
