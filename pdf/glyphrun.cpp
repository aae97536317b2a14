// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/glyphrun.h"

#include "pdf/characters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace pdf {

bool isSameGlyph(const PlacedGlyph &a, const PlacedGlyph &b, double em)
{
    // The narrowest letters of narrow fonts advance by 0.18 em; in fonts whose size says little
    // about their letters only the advance tells.
    constexpr double nearEm = 0.12;
    constexpr double nearAdvances = 0.4;
    const double near = std::min(nearEm * em, nearAdvances * (b.end - b.start));
    return a.character == b.character && std::abs(a.start - b.start) <= near;
}

bool GlyphRun::isFollowedFrom(double start) const
{
    constexpr double farthestBackEm = 0.2;
    constexpr double leastAdvance = 0.25;
    const PlacedGlyph &last = glyphs.back();
    const double earliest = std::min(last.end - farthestBackEm * line.em,
                                     last.start + leastAdvance * (last.end - last.start));
    return start >= earliest && start <= last.end + widestGap();
}

void GlyphRun::append(const PlacedGlyph &glyph)
{
    if (glyphs.empty()) {
        constexpr std::size_t usualLength = 16;
        glyphs.reserve(usualLength);
    } else if (isMark(glyph.character) && glyph.start < end()) {
        // It belongs to the letter under it, whose width stays.
        glyphs.push_back({end(), end(), glyph.character, false, true});
        return;
    } else if (!glyph.isContinuation) {
        PlacedGlyph &last = glyphs.back();
        last.end = std::clamp(glyph.start, last.start, last.end);
        const double gap = glyph.start - last.end;
        smallestGap = gaps == 0 ? gap : std::min(smallestGap, gap);
        ++gaps;
    }
    glyphs.push_back(glyph);
}

double GlyphRun::letterSpacing() const
{
    // Two letters with a distance are two words as likely as a spaced heading.
    constexpr int fewestGaps = 2;
    return gaps < fewestGaps ? 0 : std::max(0.0, smallestGap);
}

double GlyphRun::widestGap() const
{
    return line.em + 2 * letterSpacing();
}

double GlyphRun::blankGap() const
{
    // Word spaces shrink to about 0.2 em in tightly set lines; kerning stays below 0.1 em.
    constexpr double smallestBlankEm = 0.15;
    return smallestBlankEm * line.em + letterSpacing();
}

} // namespace pdf
