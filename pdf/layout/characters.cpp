// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/characters.h"

#include "pdf/document/utf8.h"

#include <mupdf/ucdn.h>

#include <algorithm>
#include <cstdint>

namespace pdf {

namespace {

constexpr char32_t hyphen = '-';
constexpr char32_t replacement = 0xFFFD;

/// Ligatures and, in Arabic, the shapes that a letter takes inside a word.
bool isPresentationForm(char32_t c)
{
    return (c >= 0xFB00 && c <= 0xFDFF) || (c >= 0xFE70 && c < 0xFEFF);
}

/// Appends the letters that a presentation form stands for.
void appendLetters(std::u32string &text, char32_t form)
{
    std::uint32_t letters[18]; // the longest of them is a phrase of four words
    const int count = ucdn_compat_decompose(form, letters);
    constexpr std::uint32_t longS = 0x17F;
    std::replace(letters, letters + std::max(0, count), longS, std::uint32_t{'s'});
    // Marks that stand alone have a blank to stand on, which is not in the text.
    if (count <= 0 || letters[0] == ' ')
        text += form;
    else
        text.append(letters, letters + count);
}

char32_t printable(char32_t c)
{
    if (c == 0xAD)
        return hyphen;
    return isControl(c) ? replacement : c;
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

bool isLetter(char32_t c)
{
    const int category = ucdn_get_general_category(c);
    return category >= UCDN_GENERAL_CATEGORY_LL && category <= UCDN_GENERAL_CATEGORY_LU;
}

bool isMark(char32_t c)
{
    return c >= 0x300 && ucdn_get_combining_class(c) != 0;
}

char32_t markOfAccent(char32_t c)
{
    if (c < 0x80 && c != '`')
        return 0;
    switch (c) {
    case '`':
        return 0x300;
    case 0xB4:
        return 0x301;
    case 0x2C6:
        return 0x302;
    case 0x2DC:
        return 0x303;
    case 0xAF:
    case 0x2C9:
        return 0x304;
    case 0x2D8:
        return 0x306;
    case 0x2D9:
        return 0x307;
    case 0xA8:
        return 0x308;
    case 0x2DA:
        return 0x30A;
    case 0x2DD:
        return 0x30B;
    case 0x2C7:
        return 0x30C;
    case 0xB8:
        return 0x327;
    case 0x2DB:
        return 0x328;
    default:
        return 0;
    }
}

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
    if (std::all_of(characters.begin(), characters.end(),
                    [](char32_t c) { return c >= ' ' && c < 0x7F; })) {
        std::string plain(characters.size(), '\0');
        std::transform(characters.begin(), characters.end(), plain.begin(),
                       [](char32_t c) { return static_cast<char>(c); });
        return plain;
    }
    std::u32string text;
    for (const char32_t c : characters) {
        // Under an accent the dot of an i is left out, which is no other letter.
        constexpr char32_t dotlessI = 0x131;
        constexpr char32_t dotlessJ = 0x237;
        if (isMark(c) && !text.empty() && (text.back() == dotlessI || text.back() == dotlessJ))
            text.back() = text.back() == dotlessI ? U'i' : U'j';
        if (isPresentationForm(c))
            appendLetters(text, c);
        else
            text += printable(c);
    }
    std::string result;
    for (const char32_t c : toNfc(text))
        appendUtf8(result, c);
    return result;
}

} // namespace pdf
