// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/repairingreader.h"

#include "pdf/error.h"

namespace pdf {

RepairingReader::RepairingReader(ReadablePages &readablePages) : pages(readablePages)
{
    try {
        reader = std::make_unique<PageReader>(pages);
    } catch (const Error &) {
        readCopy();
    }
}

void RepairingReader::readCopy()
{
    reader.reset();
    pages.makeCopy();
    reader = std::make_unique<PageReader>(pages);
}

template <typename Result>
Result RepairingReader::read(Result (PageReader::*function)(int), int index)
{
    try {
        return (reader.get()->*function)(index);
    } catch (const Error &) {
        if (pages.isCopy())
            throw;
        readCopy();
        return (reader.get()->*function)(index);
    }
}

std::vector<Fragment> RepairingReader::fragments(int index)
{
    return read(&PageReader::fragments, index);
}

std::string RepairingReader::image(int index)
{
    return read(&PageReader::image, index);
}

} // namespace pdf
