// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/twopartinput.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace pdf {

TwoPartInput::TwoPartInput(std::string path, std::string_view mappedFile, std::string appended)
    : name(std::move(path)), file(mappedFile), tail(std::move(appended))
{
}

/// From the position to the end of the part it is in.
std::string_view TwoPartInput::rest() const
{
    if (position < file.size())
        return file.substr(position);
    return std::string_view(tail).substr(std::min(position - file.size(), tail.size()));
}

qpdf_offset_t TwoPartInput::findAndSkipNextEOL()
{
    while (position < size()) {
        const std::string_view part = rest();
        const std::size_t end = part.find_first_of("\r\n");
        if (end == std::string_view::npos) {
            position += part.size();
            continue;
        }
        position += end;
        const auto found = static_cast<qpdf_offset_t>(position);
        for (std::string_view ends = rest();
             !ends.empty() && (ends.front() == '\r' || ends.front() == '\n'); ends = rest())
            ++position;
        return found;
    }
    return static_cast<qpdf_offset_t>(size());
}

void TwoPartInput::seek(qpdf_offset_t offset, int whence)
{
    if (whence == SEEK_END)
        offset += static_cast<qpdf_offset_t>(size());
    else if (whence == SEEK_CUR)
        offset += static_cast<qpdf_offset_t>(position);
    if (offset < 0)
        throw std::runtime_error(name + ": seek before the beginning");
    position = static_cast<std::size_t>(offset);
}

size_t TwoPartInput::read(char *bytes, size_t length)
{
    last_offset = static_cast<qpdf_offset_t>(position);
    std::size_t done = 0;
    while (done < length && position < size()) {
        const std::string_view part = rest().substr(0, length - done);
        std::memcpy(bytes + done, part.data(), part.size());
        done += part.size();
        position += part.size();
    }
    return done;
}

void TwoPartInput::unreadCh(char)
{
    if (position > 0)
        --position;
}

} // namespace pdf
