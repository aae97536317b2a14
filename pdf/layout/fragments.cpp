// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/fragments.h"

#include "pdf/layout/characters.h"
#include "pdf/layout/lines.h"
#include "pdf/layout/nearlines.h"
#include "pdf/layout/readingorder.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace pdf {

namespace {

constexpr double ascentEm = 0.8;

/// Adds each mark to the nearest line that has a letter for it, no line height away; one without a
/// letter stands alone.
void addMarks(std::vector<GlyphRun> &lines, const std::vector<GlyphRun> &marks)
{
    for (const GlyphRun &mark : marks) {
        std::vector<GlyphRun *> candidates;
        for (GlyphRun &line : lines) {
            if (std::abs(line.line.across - mark.line.across) <= line.line.size &&
                directionKey(line.line) == directionKey(mark.line))
                candidates.push_back(&line);
        }
        std::stable_sort(candidates.begin(), candidates.end(), [&](GlyphRun *a, GlyphRun *b) {
            return std::abs(a->line.across - mark.line.across) <
                   std::abs(b->line.across - mark.line.across);
        });
        const bool isTaken = std::any_of(candidates.begin(), candidates.end(),
                                         [&](GlyphRun *line) { return line->takesMark(mark); });
        if (!isTaken)
            lines.push_back(mark);
    }
}

/// The text of a line with letters of a right-to-left script.
std::string textInReadingOrder(const GlyphRun &run)
{
    const double blank = run.blankGap();
    std::vector<std::u32string> units;
    for (std::size_t i = 0; i < run.glyphs.size(); ++i) {
        const PlacedGlyph &glyph = run.glyphs[i];
        const bool isSpaced = run.isBlankBefore(i, blank);
        if (glyph.isContinuation && !units.empty()) {
            if (isSpaced)
                units.back() += U' ';
            units.back() += glyph.character;
            continue;
        }
        if (isSpaced)
            units.emplace_back(1, U' ');
        units.emplace_back(1, glyph.character);
    }
    return readableText(readingOrder(std::move(units)));
}

std::string textOf(const GlyphRun &run)
{
    const auto isFromRight = [](const PlacedGlyph &glyph) {
        return isRightToLeft(glyph.character);
    };
    if (std::any_of(run.glyphs.begin(), run.glyphs.end(), isFromRight))
        return textInReadingOrder(run);
    const double blank = run.blankGap();
    std::vector<char32_t> characters;
    characters.reserve(run.glyphs.size() * 2);
    for (std::size_t i = 0; i < run.glyphs.size(); ++i) {
        if (run.isBlankBefore(i, blank))
            characters.push_back(' ');
        characters.push_back(run.glyphs[i].character);
    }
    return readableText(characters);
}

/// The two distances from the line, at right angles to it, between which the box lies.
std::pair<double, double> extentAcross(const Baseline &line)
{
    // Vertical writing: MuPDF gives the pen at the glyph's own origin, left of its middle.
    if (line.isVertical)
        return {line.across - line.boxSize, line.across};
    const double above = line.isMirrored ? ascentEm : -ascentEm;
    const double below = line.isMirrored ? ascentEm - 1 : 1 - ascentEm;
    return std::minmax(line.across + above * line.boxSize, line.across + below * line.boxSize);
}

Fragment fragmentOf(const GlyphRun &run)
{
    const Baseline &line = run.line;
    const auto [first, last] = extentAcross(line);
    double begin = run.start();
    double end = run.end();
    for (const PlacedGlyph &glyph : run.glyphs)
        end = std::max(end, glyph.end);
    if (line.isVertical) {
        begin -= ascentEm * line.em;
        end -= ascentEm * line.em;
    }
    double left = HUGE_VAL;
    double top = HUGE_VAL;
    double right = -HUGE_VAL;
    double bottom = -HUGE_VAL;
    for (const double along : {begin, end}) {
        for (const double across : {first, last}) {
            const double x = along * line.directionX - across * line.directionY;
            const double y = along * line.directionY + across * line.directionX;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    return {layoutCoordinate(left), layoutCoordinate(top), layoutCoordinate(right - left),
            layoutCoordinate(bottom - top), textOf(run)};
}

} // namespace

int layoutCoordinate(double pixels)
{
    constexpr double boundary = 0.44;
    constexpr double largest = 1e6;
    const double whole = std::floor(std::clamp(pixels, 0.0, largest) + 1 - boundary);
    return std::max(1, static_cast<int>(whole));
}

std::vector<Fragment> makeFragments(std::vector<GlyphRun> runs, const std::vector<GlyphRun> &marks)
{
    Lines joined = joinLines(std::move(runs));
    joinNearLines(joined);
    std::vector<GlyphRun> &lines = joined.runs;
    addMarks(lines, marks);
    std::vector<Fragment> fragments;
    fragments.reserve(lines.size());
    for (const GlyphRun &line : lines)
        fragments.push_back(fragmentOf(line));
    std::stable_sort(fragments.begin(), fragments.end(), [](const Fragment &a, const Fragment &b) {
        return std::make_pair(a.top, a.left) < std::make_pair(b.top, b.left);
    });
    return fragments;
}

} // namespace pdf
