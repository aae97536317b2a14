// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/characters.h"

#include "pdf/utf8.h"

#include <mupdf/ucdn.h>

#include <algorithm>
#include <string_view>

namespace pdf {

namespace {

constexpr char32_t hyphen = '-';
constexpr char32_t replacement = 0xFFFD;

/// The letters of a Latin ligature (U+FB00 to U+FB06), empty for others.
std::u32string_view ligatureLetters(char32_t c)
{
    static constexpr std::u32string_view letters[] = {U"ff",  U"fi", U"fl", U"ffi",
                                                      U"ffl", U"st", U"st"};
    return c >= 0xFB00 && c <= 0xFB06 ? letters[c - 0xFB00] : std::u32string_view();
}

char32_t printable(char32_t c)
{
    if (c == 0xAD)
        return hyphen;
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) ? replacement : c;
}

void appendDecomposed(std::u32string &text, char32_t c)
{
    // The longest canonical decomposition has four characters, so the loop is short.
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::u32string reversedTail;
    while (ucdn_decompose(c, &first, &second) != 0) {
        if (second != 0)
            reversedTail += static_cast<char32_t>(second);
        c = first;
    }
    text += c;
    text.append(reversedTail.rbegin(), reversedTail.rend());
}

void sortMarks(std::u32string &text)
{
    const auto combiningClass = [](char32_t c) { return ucdn_get_combining_class(c); };
    const auto isMark = [&](char32_t c) { return combiningClass(c) != 0; };
    for (auto begin = text.begin(); begin != text.end();) {
        begin = std::find_if(begin, text.end(), isMark);
        const auto end = std::find_if_not(begin, text.end(), isMark);
        std::stable_sort(begin, end, [&](char32_t a, char32_t b) {
            return combiningClass(a) < combiningClass(b);
        });
        begin = end;
    }
}

/// Canonical composition (Unicode, section 3.11) of decomposed text with marks in order.
std::u32string composed(const std::u32string &text)
{
    std::u32string result;
    std::size_t starter = 0;
    bool hasStarter = false;
    int lastClass = 0;
    for (const char32_t c : text) {
        const int markClass = ucdn_get_combining_class(c);
        const bool isAdjacent = hasStarter && starter + 1 == result.size();
        const bool isBlocked = !isAdjacent && lastClass >= markClass;
        std::uint32_t pair = 0;
        if (hasStarter && !isBlocked && ucdn_compose(&pair, result[starter], c) != 0) {
            result[starter] = pair;
            continue;
        }
        if (markClass == 0) {
            starter = result.size();
            hasStarter = true;
        }
        lastClass = markClass;
        result += c;
    }
    return result;
}

std::u32string toNfc(const std::u32string &text)
{
    // Below U+0300 every character is its own NFC.
    if (std::all_of(text.begin(), text.end(), [](char32_t c) { return c < 0x300; }))
        return text;
    std::u32string decomposed;
    for (const char32_t c : text)
        appendDecomposed(decomposed, c);
    sortMarks(decomposed);
    return composed(decomposed);
}

} // namespace

bool isBlank(char32_t c)
{
    return c == ' ' || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

bool isDropped(char32_t c)
{
    return c == 0 || c == 0x200B || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2060 && c <= 0x2064) || (c >= 0x2066 && c <= 0x206F) || c == 0xFEFF ||
           c == 0x61C;
}

std::string readableText(const std::vector<char32_t> &characters)
{
    std::u32string text;
    for (const char32_t c : characters) {
        const std::u32string_view letters = ligatureLetters(c);
        if (letters.empty())
            text += printable(c);
        else
            text += letters;
    }
    std::string result;
    for (const char32_t c : toNfc(text))
        appendUtf8(result, c);
    return result;
}

} // namespace pdf
