// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/contentscheck.h"

#include <string_view>

namespace pdf {

namespace {

/// Whether nothing is missing of compressed data without the mark of its end: there is none, or
/// its last block was handed over as a whole (RFC 1950 and 1951: an empty block that is stored
/// follows), as programs leave it that do not finish what they compress.
bool isWhole(fz_context *context, pdf_obj *contents)
{
    constexpr std::string_view emptyBlock("\x00\x00\xff\xff", 4);
    fz_buffer *raw = pdf_load_raw_stream(context, contents);
    unsigned char *bytes = nullptr;
    const std::size_t size = fz_buffer_storage(context, raw, &bytes);
    const std::string_view data(reinterpret_cast<const char *>(bytes), size);
    const bool isWhole = data.empty() || (data.size() >= emptyBlock.size() &&
                                          data.substr(size - emptyBlock.size()) == emptyBlock);
    fz_drop_buffer(context, raw);
    return isWhole;
}

void decode(fz_context *context, pdf_obj *contents)
{
    fz_stream *stream = pdf_open_stream(context, contents);
    fz_try(context)
    {
        unsigned char bytes[4096];
        while (fz_read(context, stream, bytes, sizeof bytes) > 0) {
        }
        // A warning like the last one is held back until another one comes.
        fz_flush_warnings(context);
    }
    fz_always(context)
    {
        fz_drop_stream(context, stream);
    }
    fz_catch(context)
    {
        fz_rethrow(context);
    }
}

void checkStream(fz_context *context, pdf_obj *contents, ReadingNotes *notes)
{
    // What does not exist or is no stream is as good as empty (ISO 32000-1, 7.3.10).
    if (pdf_is_stream(context, contents) == 0)
        return;
    const ReadingNotes before = *notes;
    decode(context, contents);
    if (notes->warnings != before.warnings ||
        (notes->earlyEnds != before.earlyEnds && !isWhole(context, contents)))
        notes->isDamaged = true;
}

} // namespace

void noteWarning(void *user, const char *message)
{
    const std::string_view text = message;
    // These are about where a stream ends; its data is found nevertheless.
    for (const std::string_view harmless :
         {"PDF stream Length incorrect", "line feed missing after stream", "... repeated"}) {
        if (text.substr(0, harmless.size()) == harmless)
            return;
    }
    auto *notes = static_cast<ReadingNotes *>(user);
    ++(text == "premature end of data in flate filter" ? notes->earlyEnds : notes->warnings);
}

void checkContents(fz_context *context, pdf_obj *contents, const ReadingNotes &before,
                   ReadingNotes *notes)
{
    fz_flush_warnings(context);
    if (notes->warnings == before.warnings && notes->earlyEnds == before.earlyEnds)
        return;
    if (pdf_is_array(context, contents) == 0) {
        checkStream(context, contents, notes);
        return;
    }
    const int count = pdf_array_len(context, contents);
    for (int i = 0; i < count; ++i)
        checkStream(context, pdf_array_get(context, contents, i), notes);
}

} // namespace pdf
