// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/readingorder.h"

#include "pdf/layout/unknownglyphs.h"

#include <mupdf/ucdn.h>

#include <algorithm>
#include <cstddef>

namespace pdf {

namespace {

enum class Kind { Left, Right, Number, Separator, NumberSign, Neutral };

/// isArabic: the line has Arabic letters, behind which plus, minus and the signs of percent and
/// currencies are no part of a number (Unicode Annex 9, rule W2).
Kind kindOf(char32_t c, bool isArabic)
{
    if (isUnknownLetter(c))
        return Kind::Neutral;
    switch (ucdn_get_bidi_class(c)) {
    case UCDN_BIDI_CLASS_L:
        return Kind::Left;
    case UCDN_BIDI_CLASS_R:
    case UCDN_BIDI_CLASS_AL:
        return Kind::Right;
    case UCDN_BIDI_CLASS_EN:
    case UCDN_BIDI_CLASS_AN:
        return Kind::Number;
    case UCDN_BIDI_CLASS_CS:
        return Kind::Separator;
    case UCDN_BIDI_CLASS_ES:
        return isArabic ? Kind::Neutral : Kind::Separator;
    case UCDN_BIDI_CLASS_ET:
        return isArabic ? Kind::Neutral : Kind::NumberSign;
    default:
        return Kind::Neutral;
    }
}

/// Makes what belongs to a number part of it, a separator between two digits or signs beside them,
/// and numbers behind Latin letters ("INV-0042") letters (Unicode Annex 9, rules W4 to W7).
void resolveNumbers(std::vector<Kind> &kinds)
{
    const std::size_t count = kinds.size();
    for (std::size_t i = 1; i + 1 < count; ++i) {
        if (kinds[i] == Kind::Separator && kinds[i - 1] == Kind::Number &&
            kinds[i + 1] == Kind::Number)
            kinds[i] = Kind::Number;
    }
    for (std::size_t i = 1; i < count; ++i) {
        if (kinds[i] == Kind::NumberSign && kinds[i - 1] == Kind::Number)
            kinds[i] = Kind::Number;
    }
    for (std::size_t i = count - 1; i-- > 0;) {
        if (kinds[i] == Kind::NumberSign && kinds[i + 1] == Kind::Number)
            kinds[i] = Kind::Number;
    }
    Kind letter = Kind::Neutral;
    for (Kind &kind : kinds) {
        if (kind == Kind::Left || kind == Kind::Right)
            letter = kind;
        else if (kind == Kind::Number && letter == Kind::Left)
            kind = Kind::Left;
        else if (kind == Kind::Separator || kind == Kind::NumberSign)
            kind = Kind::Neutral;
    }
}

/// The embedding level of each unit; a level more means the direction turned once more.
std::vector<int> levelsOf(std::vector<Kind> kinds)
{
    const auto lefts = std::count(kinds.begin(), kinds.end(), Kind::Left);
    const auto rights = std::count(kinds.begin(), kinds.end(), Kind::Right);
    const int base = rights >= lefts ? 1 : 0;
    resolveNumbers(kinds);
    // Numbers count as right-to-left letters for the blanks and signs beside them.
    const auto sideOf = [&](Kind kind) {
        return kind == Kind::Neutral ? base : kind == Kind::Left ? 0 : 1;
    };
    std::vector<int> levels(kinds.size());
    for (std::size_t i = 0; i < kinds.size();) {
        std::size_t end = i;
        while (end < kinds.size() && kinds[end] == Kind::Neutral)
            ++end;
        if (end == i) {
            const bool isTwiceTurned = kinds[i] == Kind::Number;
            const int letterLevel = kinds[i] == Kind::Left ? base * 2 : 1;
            levels[i++] = isTwiceTurned ? 2 : letterLevel;
            continue;
        }
        const int before = i > 0 ? sideOf(kinds[i - 1]) : base;
        const int after = end < kinds.size() ? sideOf(kinds[end]) : base;
        const int side = before == after ? before : base;
        std::fill(levels.begin() + static_cast<std::ptrdiff_t>(i),
                  levels.begin() + static_cast<std::ptrdiff_t>(end), side == 0 ? base * 2 : 1);
        i = end;
    }
    return levels;
}

/// Turns each stretch of units at or above every level around (Annex 9, rule L2). Doing so on what
/// is seen gives what is read.
void turnAround(std::vector<std::u32string> &units, std::vector<int> &levels)
{
    for (const int level : {2, 1}) {
        for (std::size_t i = 0; i < units.size();) {
            std::size_t end = i;
            while (end < units.size() && levels[end] >= level)
                ++end;
            const auto from = static_cast<std::ptrdiff_t>(i);
            const auto to = static_cast<std::ptrdiff_t>(end);
            std::reverse(units.begin() + from, units.begin() + to);
            std::reverse(levels.begin() + from, levels.begin() + to);
            i = end + 1;
        }
    }
}

int closedBrackets(const std::vector<char32_t> &text)
{
    std::vector<char32_t> open;
    int closed = 0;
    for (const char32_t c : text) {
        const int type = ucdn_paired_bracket_type(c);
        if (type == UCDN_BIDI_PAIRED_BRACKET_TYPE_OPEN) {
            open.push_back(ucdn_paired_bracket(c));
        } else if (type == UCDN_BIDI_PAIRED_BRACKET_TYPE_CLOSE && !open.empty() &&
                   open.back() == c) {
            open.pop_back();
            ++closed;
        }
    }
    return closed;
}

} // namespace

bool isRightToLeft(char32_t c)
{
    constexpr char32_t firstHebrew = 0x590;
    return c >= firstHebrew && kindOf(c, false) == Kind::Right;
}

std::vector<char32_t> readingOrder(std::vector<std::u32string> units)
{
    const bool isArabic = std::any_of(units.begin(), units.end(), [](const std::u32string &unit) {
        return ucdn_get_bidi_class(unit.front()) == UCDN_BIDI_CLASS_AL;
    });
    std::vector<Kind> kinds(units.size());
    std::transform(
        units.begin(), units.end(), kinds.begin(),
        [isArabic](const std::u32string &unit) { return kindOf(unit.front(), isArabic); });
    std::vector<int> levels = levelsOf(std::move(kinds));
    turnAround(units, levels);
    std::vector<char32_t> text;
    std::vector<char32_t> mirrored;
    for (std::size_t i = 0; i < units.size(); ++i) {
        for (const char32_t c : units[i]) {
            text.push_back(c);
            mirrored.push_back(levels[i] == 1 ? ucdn_mirror(c) : c);
        }
    }
    return closedBrackets(text) > closedBrackets(mirrored) ? text : mirrored;
}

} // namespace pdf
