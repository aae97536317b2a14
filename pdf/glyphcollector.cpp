// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/glyphcollector.h"

#include "pdf/characters.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pdf {

namespace {

/// Direction of the pen: along the advance, or, for a glyph that does not move the pen, at right
/// angles to the font's up vector.
Baseline baselineOf(const ShownGlyph &glyph)
{
    Baseline line;
    line.isVertical = glyph.isVertical;
    const double upLength = std::hypot(glyph.upX, glyph.upY);
    const double advance = std::hypot(glyph.advanceX, glyph.advanceY);
    if (advance > 0) {
        line.directionX = glyph.advanceX / advance;
        line.directionY = glyph.advanceY / advance;
    } else if (upLength > 0 && !glyph.isVertical) {
        line.directionX = -glyph.upY / upLength;
        line.directionY = glyph.upX / upLength;
    } else if (upLength > 0) {
        line.directionX = -glyph.upX / upLength;
        line.directionY = -glyph.upY / upLength;
    }
    line.across = glyph.y * line.directionX - glyph.x * line.directionY;
    // Slanted fonts have an up vector that leans; only its height over the line counts.
    const double upAcross = glyph.upY * line.directionX - glyph.upX * line.directionY;
    line.size = glyph.isVertical ? upLength : std::abs(upAcross);
    line.isMirrored = upAcross > 0;
    line.em = glyph.em;
    return line;
}

bool isSameDirection(const Baseline &a, const Baseline &b)
{
    constexpr double cosineOfTwoDegrees = 0.9994;
    return a.directionX * b.directionX + a.directionY * b.directionY > cosineOfTwoDegrees &&
           a.isVertical == b.isVertical && a.isMirrored == b.isMirrored;
}

} // namespace

bool GlyphCollector::isOutside(const ShownGlyph &glyph) const
{
    // The middle of a lower-case letter, so that a line cut by the page's edge counts as visible
    // when most of it is.
    const double x = glyph.x + glyph.advanceX / 2 + 0.3 * glyph.upX;
    const double y = glyph.y + glyph.advanceY / 2 + 0.3 * glyph.upY;
    return !(x >= 0 && y >= 0 && x <= width && y <= height);
}

bool GlyphCollector::continuesRun(const Baseline &line, double start) const
{
    if (runs.empty())
        return false;
    const GlyphRun &run = runs.back();
    const double smaller = std::min(line.size, run.line.size);
    return isSameDirection(line, run.line) &&
           std::abs(line.across - run.line.across) < 0.02 * smaller &&
           std::max(line.size, run.line.size) < 1.02 * smaller && run.isFollowedFrom(start);
}

bool GlyphCollector::isRepetition(const Baseline &line, const PlacedGlyph &glyph) const
{
    return !runs.empty() && isSameDirection(line, runs.back().line) &&
           std::abs(line.across - runs.back().line.across) < 0.02 * line.size &&
           isSameGlyph(runs.back().glyphs.back(), glyph, line.em);
}

void GlyphCollector::add(const ShownGlyph &glyph)
{
    if (glyph.isContinuation) {
        if (!skipsContinuations && !isDropped(glyph.character)) {
            const double end = runs.back().end();
            runs.back().append({end, end, glyph.character, false, true});
        }
        return;
    }
    skipsContinuations = true;
    if (isBlank(glyph.character)) {
        hasBlank = true;
        return;
    }
    if (isOutside(glyph) || !(glyph.em > 0))
        return;
    const Baseline line = baselineOf(glyph);
    const double start = glyph.x * line.directionX + glyph.y * line.directionY;
    const double end = start + std::hypot(glyph.advanceX, glyph.advanceY);
    if (!std::isfinite(start) || !std::isfinite(end) || !std::isfinite(line.across) ||
        !(line.size > 0))
        return;
    const bool isContinued = continuesRun(line, start);
    if (isDropped(glyph.character)) {
        // Nothing is seen of it, but its width is not a gap between letters either.
        if (isContinued)
            runs.back().glyphs.back().end = end;
        return;
    }
    const PlacedGlyph placed{start, end, glyph.character, isContinued && hasBlank, false};
    if (isRepetition(line, placed))
        return;
    if (!isContinued) {
        GlyphRun run;
        run.line = line;
        run.order = static_cast<int>(runs.size());
        runs.push_back(std::move(run));
    }
    runs.back().append(placed);
    hasBlank = false;
    skipsContinuations = false;
}

} // namespace pdf
