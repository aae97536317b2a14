// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/glyphcollector.h"

#include "pdf/layout/characters.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pdf {

namespace {

bool isSameDirection(const Baseline &a, const Baseline &b)
{
    constexpr double cosineOfTwoDegrees = 0.9994;
    return a.directionX * b.directionX + a.directionY * b.directionY > cosineOfTwoDegrees &&
           a.isVertical == b.isVertical && a.isMirrored == b.isMirrored;
}

/// Whether the accent is drawn over or under the letter instead of beside it. Where fonts do not
/// tell how wide their accents are, each of them seems to reach over its neighbours.
bool isOver(const Baseline &accentLine, const PlacedGlyph &accent, const Baseline &line,
            const PlacedGlyph &letter)
{
    constexpr double raisedSizes = 0.5;
    constexpr double widestEm = 0.95;
    const double middle = (accent.start + accent.end) / 2;
    return isSameDirection(line, accentLine) && middle > letter.start && middle < letter.end &&
           accent.end - accent.start < widestEm * accentLine.em &&
           std::abs(line.across - accentLine.across) < raisedSizes * line.size;
}

} // namespace

TextAxes::TextAxes(double alongX, double alongY, double upwardsX, double upwardsY, bool isVertical)
    : upX(upwardsX), upY(upwardsY)
{
    line.isVertical = isVertical;
    line.em = std::hypot(alongX, alongY);
    if (line.em > 0) {
        line.directionX = alongX / line.em;
        line.directionY = alongY / line.em;
    }
    // Slanted fonts have an up vector that leans; only its height over the line counts.
    const double upAcross = upY * line.directionX - upX * line.directionY;
    line.size = isVertical ? line.em : std::abs(upAcross);
    line.isMirrored = upAcross > 0;
}

bool GlyphCollector::isOutside(const TextAxes &axes, const ShownGlyph &glyph) const
{
    // The middle of a lower-case letter, so that a line cut by the page's edge counts as visible
    // when most of it is.
    const double half = glyph.advance / 2 * axes.line.em;
    const double x = glyph.x + half * axes.line.directionX + 0.3 * axes.upX;
    const double y = glyph.y + half * axes.line.directionY + 0.3 * axes.upY;
    return !ClipBox{0, 0, width, height}.contains(x, y) || !axes.clip.contains(x, y);
}

bool GlyphCollector::isOnLastLine(const Baseline &line) const
{
    return !runs.empty() && isSameDirection(line, runs.back().line) &&
           std::abs(line.across - runs.back().line.across) < 0.02 * line.size;
}

bool GlyphCollector::continuesRun(const Baseline &line, double start, bool isSpaced) const
{
    const GlyphRun &run = runs.back();
    const double smaller = std::min(line.size, run.line.size);
    return std::abs(line.across - run.line.across) < 0.02 * smaller &&
           std::max(line.size, run.line.size) < 1.02 * smaller &&
           run.isFollowedFrom(start, isSpaced);
}

void GlyphCollector::add(const TextAxes &axes, const ShownGlyph &glyph)
{
    if (isReplacing)
        replaced.emplace_back(axes, glyph);
    else
        show(axes, glyph);
}

void GlyphCollector::show(const TextAxes &axes, const ShownGlyph &glyph)
{
    if (hasAccent)
        settleAccent(axes, glyph);
    if (glyph.isContinuation) {
        if (skipsContinuations)
            return;
        if (isBlank(glyph.character)) {
            showBlank(axes, glyph);
        } else {
            const double end = runs.back().end();
            runs.back().append(
                PlacedGlyph{end, end, glyph.character, std::exchange(hasBlank, false), true});
        }
        return;
    }
    skipsContinuations = true;
    const bool isOrdinary = isPlain(glyph.character);
    if (!isOrdinary && isBlank(glyph.character)) {
        showBlank(axes, glyph);
        return;
    }
    Baseline line = axes.line;
    if (!(line.em > 0) || !(line.size > 0) || isOutside(axes, glyph))
        return;
    line.across = glyph.y * line.directionX - glyph.x * line.directionY;
    const double start = glyph.x * line.directionX + glyph.y * line.directionY;
    const PlacedGlyph placed = {start, start + glyph.advance * line.em, glyph.character};
    if (!std::isfinite(placed.start + placed.end + line.across))
        return;
    if (isOrdinary || !showsNoLetter(line, placed, glyph.toMiddle))
        place(line, placed);
}

bool GlyphCollector::showsNoLetter(const Baseline &line, const PlacedGlyph &glyph, double toMiddle)
{
    if (isDropped(glyph.character)) {
        // Nothing is seen of it, but its width is not a gap between letters either.
        if (isOnLastLine(line) && continuesRun(line, glyph.start, false))
            runs.back().glyphs.back().end = glyph.end;
        return true;
    }
    if (isMark(glyph.character)) {
        addMark(line, glyph.start + toMiddle, glyph.character);
        return true;
    }
    if (markOfAccent(glyph.character) == 0)
        return false;
    hasAccent = true;
    accentLine = line;
    accent = glyph;
    return true;
}

void GlyphCollector::settleAccent(const TextAxes &axes, const ShownGlyph &glyph)
{
    hasAccent = false;
    Baseline line = axes.line;
    line.across = glyph.y * line.directionX - glyph.x * line.directionY;
    const double start = glyph.x * line.directionX + glyph.y * line.directionY;
    const PlacedGlyph next = {start, start + glyph.advance * line.em, glyph.character};
    const bool isLetter = !glyph.isContinuation && !isBlank(glyph.character);
    if (isLetter && isOver(accentLine, accent, line, next))
        addMark(line, (next.start + next.end) / 2, markOfAccent(accent.character));
    else if (!runs.empty() &&
             isOver(accentLine, accent, runs.back().line, runs.back().glyphs.back()))
        addMark(runs.back().line, (runs.back().glyphs.back().start + runs.back().end()) / 2,
                markOfAccent(accent.character));
    else
        place(accentLine, accent);
}

void GlyphCollector::addMark(const Baseline &line, double middle, char32_t mark)
{
    GlyphRun run;
    run.line = line;
    run.append({middle, middle, mark, false, false});
    marks.push_back(std::move(run));
}

void GlyphCollector::showBlank(const TextAxes &axes, const ShownGlyph &glyph)
{
    hasBlank = true;
    blankX = glyph.x;
    blankY = glyph.y;
    blankAdvance = glyph.advance * axes.line.em;
    blankString = glyph.movesPen ? strings : 0;
}

bool GlyphCollector::isBehindBlank(const Baseline &line, double start) const
{
    // A blank may be stretched, and what follows may stand a little higher; farther away it is the
    // end of another text.
    constexpr double widestMoveEm = 0.7;
    constexpr double noiseEm = 0.1;
    constexpr double raisedSizes = 0.35;
    const double across = blankY * line.directionX - blankX * line.directionY;
    const double way = start - (blankX * line.directionX + blankY * line.directionY);
    return way >= -noiseEm * line.em && way <= blankAdvance + widestMoveEm * line.em &&
           std::abs(across - line.across) <= raisedSizes * line.size;
}

bool GlyphCollector::isBlankTakenBack(const Baseline &line, double start) const
{
    // Letters that a producer kerns with word and letter spacing are at most 0.02 em behind the
    // blank's place; word spaces shrink to 0.15 em. A blank of another string says that a word
    // ends, wherever the next one is put.
    constexpr double nearestEm = 0.05;
    const double way = start - (blankX * line.directionX + blankY * line.directionY);
    return blankString == strings && way < nearestEm * line.em;
}

void GlyphCollector::place(const Baseline &line, const PlacedGlyph &glyph)
{
    const bool isOnLine = isOnLastLine(line);
    if (isOnLine && isSameGlyph(runs.back().glyphs.back(), glyph, line.em))
        return; // a bold look
    // The first test settles nearly all glyphs.
    bool isContinued = isOnLine && continuesRun(line, glyph.start, false);
    const bool isSpaced = hasBlank && !isBlankTakenBack(line, glyph.start) &&
                          (isContinued || isBehindBlank(line, glyph.start));
    isContinued = isContinued || (isOnLine && isSpaced && continuesRun(line, glyph.start, true));
    if (!isContinued) {
        GlyphRun run;
        run.line = line;
        run.order = static_cast<int>(runs.size());
        run.string = strings;
        runs.push_back(std::move(run));
    }
    PlacedGlyph placed = glyph;
    placed.hasBlankBefore = isSpaced;
    runs.back().append(placed);
    hasBlank = false;
    skipsContinuations = false;
}

void GlyphCollector::beginReplacement(std::u32string text)
{
    isReplacing = true;
    if (std::exchange(hasAccent, false))
        place(accentLine, accent);
    replacement = std::move(text);
    replaced.clear();
}

void GlyphCollector::endReplacement()
{
    isReplacing = false;
    skipsContinuations = true;
    if (replaced.empty())
        return;
    if (std::all_of(replacement.begin(), replacement.end(), isMark)) {
        auto [axes, mark] = replaced.front();
        for (const char32_t c : replacement) {
            mark.character = c;
            show(axes, mark);
        }
        return;
    }
    GlyphCollector shown(width, height);
    for (const auto &[axes, glyph] : replaced)
        shown.show(axes, glyph);
    shown.runs = shown.takeRuns();
    if (shown.runs.empty()) {
        for (const auto &[axes, glyph] : replaced) {
            if (isBlank(glyph.character))
                showBlank(axes, glyph);
        }
        return;
    }
    // Marks may come first, on lines of their own.
    const auto widest = std::max_element(shown.runs.begin(), shown.runs.end(),
                                         [](const GlyphRun &a, const GlyphRun &b) {
                                             return a.end() - a.start() < b.end() - b.start();
                                         });
    const auto isElsewhere = [widest](const GlyphRun &run) {
        constexpr double accentSizes = 0.5;
        return !isSameDirection(run.line, widest->line) ||
               std::abs(run.line.across - widest->line.across) > accentSizes * widest->line.size;
    };
    const auto isCutOff = [this](const std::pair<TextAxes, ShownGlyph> &one) {
        return !isBlank(one.second.character) && isOutside(one.first, one.second);
    };
    if (std::any_of(shown.runs.begin(), shown.runs.end(), isElsewhere) ||
        std::any_of(replaced.begin(), replaced.end(), isCutOff)) {
        for (const auto &[axes, glyph] : replaced)
            show(axes, glyph);
        skipsContinuations = true;
        return;
    }
    GlyphRun whole = *widest;
    for (const GlyphRun &run : shown.runs)
        whole.glyphs.insert(whole.glyphs.end(), run.glyphs.begin(), run.glyphs.end());
    replace(whole);
    skipsContinuations = true;
}

/// Puts the replacement where the glyphs stand, on the first one's line.
void GlyphCollector::replace(const GlyphRun &shown)
{
    PlacedGlyph whole = shown.glyphs.front();
    for (const PlacedGlyph &glyph : shown.glyphs) {
        whole.start = std::min(whole.start, glyph.start);
        whole.end = std::max(whole.end, glyph.end);
    }
    bool isFirst = true;
    for (const char32_t c : replacement) {
        if (isBlank(c)) {
            const Baseline &line = shown.line;
            const double place = isFirst ? whole.start : whole.end;
            hasBlank = true;
            blankX = place * line.directionX - line.across * line.directionY;
            blankY = place * line.directionY + line.across * line.directionX;
            blankAdvance = 0;
        } else if (isFirst && !isDropped(c)) {
            whole.character = c;
            place(shown.line, whole);
            // A letter drawn twice has not been placed again.
            if (skipsContinuations)
                return;
            isFirst = false;
        } else if (!isDropped(c)) {
            runs.back().append(
                PlacedGlyph{whole.end, whole.end, c, std::exchange(hasBlank, false), true});
        }
    }
}

std::vector<GlyphRun> GlyphCollector::takeRuns()
{
    if (isReplacing)
        endReplacement();
    if (std::exchange(hasAccent, false))
        place(accentLine, accent);
    return std::move(runs);
}

std::vector<GlyphRun> GlyphCollector::takeMarks()
{
    return std::move(marks);
}

} // namespace pdf
