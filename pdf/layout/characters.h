// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

namespace pdf {

/// Whether the character is an ordinary one of ASCII, to which the questions below need not be put.
[[nodiscard]] inline bool isPlain(char32_t character)
{
    return character > ' ' && character < 0x7F && character != '`';
}

/// Whether the character is a blank of any kind or width, also a tab or a line separator.
[[nodiscard]] bool isBlank(char32_t character);

/// Whether the character is a control character, which no page shows.
[[nodiscard]] inline bool isControl(char32_t character)
{
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

/// Whether the character leaves no trace on the page and means nothing in a name: zero-width
/// blanks, byte order marks, marks of the writing direction.
[[nodiscard]] bool isDropped(char32_t character);

/// Whether the character is a letter of any script, no digit or sign.
[[nodiscard]] bool isLetter(char32_t character);

/// Whether the character is drawn onto the letter before it (an accent, a vowel point).
[[nodiscard]] bool isMark(char32_t character);

/// The mark (see isMark) that looks like the character, an accent standing alone (U+00A8), 0 for
/// all other characters.
[[nodiscard]] char32_t markOfAccent(char32_t character);

/// The characters as UTF-8 text in NFC: ligatures and the shapes of letters inside words as
/// letters, soft hyphens (drawn by producers where a hyphen is seen) as hyphens, control characters
/// and what is no character as U+FFFD.
[[nodiscard]] std::string readableText(const std::vector<char32_t> &characters);

} // namespace pdf
