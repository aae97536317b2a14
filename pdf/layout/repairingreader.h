// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/pagereader.h"

namespace pdf {

/// A PageReader that goes over to a sound copy of the document when the document as it stands, or a
/// page of it, cannot be read. Meant for one worker process, whose pages are then its own.
class RepairingReader
{
public:
    /// The pages must outlive the reader. Throws Error(InputUnreadable).
    explicit RepairingReader(ReadablePages &readablePages);

    /// As PageReader has them.
    [[nodiscard]] std::vector<Fragment> fragments(int index);
    [[nodiscard]] std::string image(int index);

private:
    void readCopy();
    template <typename Result>
    Result read(Result (PageReader::*function)(int), int index);

    ReadablePages &pages;
    std::unique_ptr<PageReader> reader;
};

} // namespace pdf
