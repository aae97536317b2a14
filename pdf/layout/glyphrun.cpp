// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/glyphrun.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace pdf {

namespace {

/// Where no blank is shown, what is farther apart are two texts, see GlyphRun::widestGap().
constexpr double widestMoveEm = 0.7;
/// Letters this near have no spacing; noise and rounded widths stay below it.
constexpr double tightEm = 0.01;

/// Whether the distance between the neighbours can be letter spacing.
bool isLetterGap(const PlacedGlyph &before, const PlacedGlyph &glyph)
{
    const bool isLeader = glyph.character == '.' && before.character == '.';
    return !glyph.isContinuation && !glyph.hasBlankBefore && !isLeader;
}

} // namespace

bool isSameGlyph(const PlacedGlyph &a, const PlacedGlyph &b, double em)
{
    // The narrowest letters of narrow fonts advance by 0.18 em; in fonts whose size says little
    // about their letters only the advance tells.
    constexpr double nearEm = 0.12;
    constexpr double nearAdvances = 0.4;
    const double near = std::min(nearEm * em, nearAdvances * (b.end - b.start));
    return a.character == b.character && std::abs(a.start - b.start) <= near;
}

bool GlyphRun::isFollowedFrom(double start, bool hasBlankBefore) const
{
    constexpr double farthestBackEm = 0.2;
    constexpr double leastAdvance = 0.15;
    const PlacedGlyph &last = glyphs.back();
    const double earliest = std::min(last.end - farthestBackEm * line.em,
                                     last.start + leastAdvance * (last.end - last.start));
    return start >= earliest && (start <= last.end + widestMoveEm * line.em ||
                                 start <= last.end + widestGap(hasBlankBefore));
}

void GlyphRun::append(const PlacedGlyph &glyph)
{
    if (glyphs.empty()) {
        constexpr std::size_t usualLength = 16;
        glyphs.reserve(usualLength);
    } else if (!glyph.isContinuation) {
        PlacedGlyph &last = glyphs.back();
        last.end = std::clamp(glyph.start, last.start, last.end);
        if (isLetterGap(last, glyph)) {
            ++gaps;
            if (glyph.start - last.end <= tightEm * line.em)
                ++tightGaps;
        }
    }
    glyphs.push_back(glyph);
}

void GlyphRun::append(const GlyphRun &next)
{
    const std::size_t before = glyphs.size();
    for (const PlacedGlyph &glyph : next.glyphs)
        append(glyph);
    if (next.line.boxSize > line.boxSize && static_cast<std::size_t>(firstWordLength()) > before)
        line.boxSize = next.line.boxSize;
}

void GlyphRun::insert(std::size_t place, const std::vector<PlacedGlyph> &letters)
{
    PlacedGlyph &before = glyphs[place - 1];
    before.end = std::clamp(letters.front().start, before.start, before.end);
    const auto next = glyphs.begin() + static_cast<std::ptrdiff_t>(place);
    glyphs.insert(next, letters.begin(), letters.end());
}

bool GlyphRun::takesMark(const GlyphRun &mark)
{
    // Marks stand half an em beside a narrow letter at most.
    constexpr double widestReachEm = 0.5;
    const double middle = mark.start();
    const auto distanceTo = [middle](const PlacedGlyph &glyph) {
        return std::max({0.0, glyph.start - middle, middle - glyph.end});
    };
    auto nearest = glyphs.end();
    for (auto glyph = glyphs.begin(); glyph != glyphs.end(); ++glyph) {
        if (!glyph->isContinuation &&
            (nearest == glyphs.end() || distanceTo(*glyph) < distanceTo(*nearest)))
            nearest = glyph;
    }
    if (nearest == glyphs.end() || distanceTo(*nearest) > widestReachEm * line.em)
        return false;
    const double end = nearest->end;
    const char32_t character = mark.glyphs.front().character;
    for (++nearest; nearest != glyphs.end() && nearest->isContinuation; ++nearest) {
        if (nearest->character == character)
            return true; // a bold look
    }
    glyphs.insert(nearest, {end, end, character, false, true});
    return true;
}

double GlyphRun::letterSpacing() const
{
    // Two letters with a distance are two words as likely as a spaced heading. What blanks take
    // says nothing, nor what dots that lead to a page number keep. The lower quartile, because
    // spaced letters may have a tight pair among them ("-B"), while short words that only
    // movements part ("A 1 of 2") have more tight pairs than that.
    constexpr int fewestGaps = 2;
    constexpr std::size_t mostGaps = 63; // enough to tell, and long lines take no longer
    if (gaps < fewestGaps || tightGaps > gaps / 4)
        return 0;
    std::array<double, mostGaps> widths = {};
    auto end = widths.begin();
    for (std::size_t i = 1; i < glyphs.size() && end != widths.end(); ++i) {
        if (isLetterGap(glyphs[i - 1], glyphs[i]))
            *end++ = glyphs[i].start - glyphs[i - 1].end;
    }
    const auto quartile = widths.begin() + (end - widths.begin()) / 4;
    std::nth_element(widths.begin(), quartile, end);
    return std::max(0.0, *quartile);
}

double GlyphRun::widestGap(bool hasBlank) const
{
    // Word spaces of justified lines are stretched to 0.6 em, behind sentences to 0.9 em; tables
    // have their columns 0.75 em apart. A shown blank can be an em wide by itself (U+3000), and
    // two of a typewriter font are as wide as a column gap. No limit is an em exactly, which is a
    // common distance (a quad).
    constexpr double widestBehindSentenceEm = 0.95;
    constexpr double widestBlankEm = 1.05;
    double widest = widestBlankEm;
    if (!hasBlank)
        widest = endsSentence() ? widestBehindSentenceEm : widestMoveEm;
    return widest * line.em + 2 * letterSpacing();
}

bool GlyphRun::endsSentence() const
{
    const auto isClosing = [](const PlacedGlyph &glyph) {
        constexpr std::u32string_view marks = U")]\"'\u2019\u201D\u00BB";
        return marks.find(glyph.character) != marks.npos;
    };
    const auto last = std::find_if_not(glyphs.rbegin(), glyphs.rend(), isClosing);
    return last != glyphs.rend() &&
           (last->character == '.' || last->character == '?' || last->character == '!');
}

double GlyphRun::blankGap() const
{
    // Word spaces shrink to about 0.2 em in tightly set lines; kerning stays below 0.1 em. TeX sets
    // the dots of an ellipsis 0.15 em apart, where noise would decide.
    constexpr double smallestBlankEm = 0.145;
    return smallestBlankEm * line.em + letterSpacing();
}

bool GlyphRun::isBlankBefore(std::size_t index, double blankGap) const
{
    const PlacedGlyph &glyph = glyphs[index];
    return index > 0 && (glyph.hasBlankBefore ||
                         (!glyph.isContinuation && glyph.start - glyphs[index - 1].end > blankGap));
}

std::ptrdiff_t GlyphRun::firstWordLength() const
{
    const double blank = blankGap();
    std::size_t length = 1;
    while (length < glyphs.size() && !isBlankBefore(length, blank))
        ++length;
    return static_cast<std::ptrdiff_t>(length);
}

} // namespace pdf
