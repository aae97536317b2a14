// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

namespace pdf {

/// Whether the character belongs to a script that is written from right to left (Hebrew, Arabic and
/// others).
[[nodiscard]] bool isRightToLeft(char32_t character);

/// The characters of a line in the order they are read, from its letters as they stand from left to
/// right. Each unit holds the characters of one letter or ligature, which keep their order.
///
/// What a page shows says less than the text it was made from: the line counts as a right-to-left
/// one when at least half of its letters are, and numbers and Latin words in it keep their order.
/// Some producers state brackets as they look, others as they are meant; whichever reading closes
/// more of them is taken.
[[nodiscard]] std::vector<char32_t> readingOrder(std::vector<std::u32string> units);

} // namespace pdf
