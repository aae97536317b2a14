// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <string_view>

namespace pdf {

/// Appends the code point. What is no Unicode scalar value or is a noncharacter becomes U+FFFD.
void appendUtf8(std::string &text, char32_t codePoint);

/// The text as one line of valid UTF-8: bytes that are no UTF-8 become U+FFFD, control characters
/// and line separators become blanks.
[[nodiscard]] std::string singleLineUtf8(std::string_view text);

} // namespace pdf
