// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/utf8.h"

#include <cstddef>

namespace pdf {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool isScalarValue(char32_t c)
{
    const bool isSurrogate = c >= 0xD800 && c <= 0xDFFF;
    const bool isNoncharacter = (c & 0xFFFE) == 0xFFFE || (c >= 0xFDD0 && c <= 0xFDEF);
    return c <= 0x10FFFF && !isSurrogate && !isNoncharacter;
}

/// Decodes one code point at pos and moves pos behind it, by one byte where nothing decodes.
char32_t nextCodePoint(std::string_view text, std::size_t &pos)
{
    const auto lead = static_cast<unsigned char>(text[pos++]);
    if (lead < 0x80)
        return lead;
    const int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4 || text.size() - pos < static_cast<std::size_t>(extra))
        return replacement;
    char32_t value = lead & (0x3FU >> extra);
    for (int i = 0; i < extra; ++i) {
        const auto next = static_cast<unsigned char>(text[pos + static_cast<std::size_t>(i)]);
        if ((next & 0xC0) != 0x80)
            return replacement;
        value = value << 6 | (next & 0x3FU);
    }
    constexpr char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    if (value < smallest[extra] || !isScalarValue(value))
        return replacement;
    pos += static_cast<std::size_t>(extra);
    return value;
}

} // namespace

void appendUtf8(std::string &text, char32_t codePoint)
{
    const char32_t c = isScalarValue(codePoint) ? codePoint : replacement;
    const auto byte = [&text](char32_t value) { text += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

std::string singleLineUtf8(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();) {
        char32_t c = nextCodePoint(text, pos);
        if (c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x2028 || c == 0x2029)
            c = ' ';
        appendUtf8(result, c);
    }
    return result;
}

} // namespace pdf
