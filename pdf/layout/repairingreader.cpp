// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/repairingreader.h"

#include <new>
#include <utility>

namespace pdf {

RepairingReader::RepairingReader(ReadablePages &readablePages)
    : pages(readablePages), mayRepair(!readablePages.isCopy())
{
    repairing([this] { current(); });
}

PageReader &RepairingReader::current()
{
    if (reader == nullptr)
        reader = std::make_unique<PageReader>(pages);
    return *reader;
}

template <typename Action>
auto RepairingReader::repairing(const Action &action) -> decltype(action())
{
    try {
        return action();
    } catch (const PageTooLarge &) {
        throw;
    } catch (const Error &) {
        if (!std::exchange(mayRepair, false))
            throw;
        try {
            pages.makeCopy();
            reader = std::make_unique<PageReader>(pages);
            return action();
        } catch (const std::exception &) {
            // What is wrong with the document tells more than why it cannot be repaired.
        }
        throw;
    }
}

template <typename Result>
Result RepairingReader::read(Result (PageReader::*function)(int), int index)
{
    return repairing([&] {
        try {
            return (current().*function)(index);
        } catch (const std::bad_alloc &) {
            reader.reset();
            return (current().*function)(index);
        }
    });
}

std::vector<Fragment> RepairingReader::fragments(int index)
{
    return read(&PageReader::fragments, index);
}

std::string RepairingReader::image(int index)
{
    return read(&PageReader::image, index);
}

std::string RepairingReader::missingFont() const
{
    return reader ? reader->missingFont() : std::string();
}

} // namespace pdf
