// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string_view>
#include <vector>

namespace pdf {

/// Pages first to last, both included and counted from 1.
struct PageRange
{
    int first = 0;
    int last = 0;
};

/// Reads "7" or "3-5" (decimal digits only). Throws Error(Usage) naming the text when it is
/// anything else, reversed, or reaches beyond pageCount.
[[nodiscard]] PageRange parsePageRange(std::string_view text, int pageCount);

/// Reads one page number, "7". Throws Error(Usage) when it is none or less than 1.
[[nodiscard]] int parsePageNumber(std::string_view text);

/// The page indexes (from 0) of the ranges, in their order, repeated where the ranges overlap.
[[nodiscard]] std::vector<int> pageIndexes(const std::vector<PageRange> &ranges);

} // namespace pdf
