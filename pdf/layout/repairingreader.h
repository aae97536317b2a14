// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/pagereader.h"

namespace pdf {

/// A PageReader that goes over to a sound copy of the document when the document as it stands, or a
/// page of it, cannot be read, and that starts anew when memory is short, because the pages read
/// before take some. Meant for one worker process, whose pages are then its own.
class RepairingReader
{
public:
    /// The pages must outlive the reader. Throws Error(InputUnreadable), std::bad_alloc.
    explicit RepairingReader(ReadablePages &readablePages);

    /// As PageReader has them.
    [[nodiscard]] std::vector<Fragment> fragments(int index);
    [[nodiscard]] std::string image(int index);
    [[nodiscard]] std::string missingFont() const;
    [[nodiscard]] bool hasDamagedContents() const { return reader->hasDamagedContents(); }
    /// As PageReader has it, or as it turned out while the copy was made.
    [[nodiscard]] bool wasRepaired() const { return pages.isDamaged() || reader->wasRepaired(); }

private:
    /// The reader, which is missing only while memory is short.
    PageReader &current();
    /// Does the action, if need be once more with a copy; the cause of a failure is the first one.
    template <typename Action>
    auto repairing(const Action &action) -> decltype(action());
    template <typename Result>
    Result read(Result (PageReader::*function)(int), int index);

    ReadablePages &pages;
    bool mayRepair; ///< once, because a further copy would be the same
    std::unique_ptr<PageReader> reader;
};

} // namespace pdf
