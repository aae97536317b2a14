// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/glyphrun.h"

#include <algorithm>

namespace pdf {

void GlyphRun::append(const PlacedGlyph &glyph)
{
    if (!glyphs.empty() && !glyph.isContinuation) {
        const double gap = glyph.start - end();
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
