// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/fragments.h"

#include "pdf/characters.h"
#include "pdf/readingorder.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>

namespace pdf {

namespace {

constexpr double ascentEm = 0.8;
/// Runs this far apart, in font sizes, still stand on one line: the words of a recognised scan do
/// not agree better, and the closest raised letters are twice as far up.
constexpr double sameLineSizes = 0.15;

/// A number that lines of one direction and way of writing share.
int directionKey(const Baseline &line)
{
    constexpr int quarterTurn = 44;
    // In steps of about two degrees, so that noise does not part a line.
    int angle = 0;
    if (line.directionY != 0 || line.directionX < 0)
        angle = static_cast<int>(std::lround(std::atan2(line.directionY, line.directionX) * 28));
    if (angle == -2 * quarterTurn)
        angle = 2 * quarterTurn;
    return ((angle + 2 * quarterTurn) * 2 + (line.isVertical ? 1 : 0)) * 2 +
           (line.isMirrored ? 1 : 0);
}

/// What runs are sorted by, apart from the runs, which are dear to move.
struct SortedRun
{
    int direction;
    double position; ///< across the line, later along it
    GlyphRun *run;
};

bool isBefore(const SortedRun &a, const SortedRun &b)
{
    return std::tie(a.direction, a.position, a.run->order) <
           std::tie(b.direction, b.position, b.run->order);
}

bool isOnSameLine(const SortedRun &a, const SortedRun &b)
{
    const double smaller = std::min(a.run->line.size, b.run->line.size);
    return a.direction == b.direction &&
           std::abs(a.run->line.across - b.run->line.across) <= sameLineSizes * smaller;
}

/// Removes from later the glyphs that earlier shows in the same place.
void removeRepeated(const GlyphRun &earlier, GlyphRun &later)
{
    const double em = later.line.em;
    const auto isRepeated = [&](const PlacedGlyph &glyph) {
        auto other = std::lower_bound(
            earlier.glyphs.begin(), earlier.glyphs.end(), glyph.start - em,
            [](const PlacedGlyph &before, double start) { return before.start < start; });
        for (; other != earlier.glyphs.end() && other->start <= glyph.start + em; ++other) {
            if (isSameGlyph(*other, glyph, em))
                return true;
        }
        return false;
    };
    auto &glyphs = later.glyphs;
    glyphs.erase(std::remove_if(glyphs.begin(), glyphs.end(), isRepeated), glyphs.end());
}

/// Joins the runs of one line, sorted by their starts, into the runs of its fragments.
class LineJoiner
{
public:
    void add(GlyphRun &&run)
    {
        // What a run repeats starts near it; looking at all of a line's runs would take its square.
        int remaining = 16;
        for (auto earlier = joined.rbegin(); earlier != joined.rend() && remaining-- > 0;
             ++earlier) {
            if (earlier->end() <= run.start())
                continue;
            removeRepeated(*earlier, run);
            if (run.glyphs.empty())
                return;
        }
        if (!joined.empty() && continues(joined.back(), run)) {
            GlyphRun &last = joined.back();
            for (const PlacedGlyph &glyph : run.glyphs)
                last.append(glyph);
        } else {
            joined.push_back(std::move(run));
        }
    }

    std::vector<GlyphRun> joined;

private:
    static bool continues(const GlyphRun &run, const GlyphRun &next)
    {
        constexpr double largestSizeRatio = 2;
        const double larger = std::max(run.line.size, next.line.size);
        const double smaller = std::min(run.line.size, next.line.size);
        const bool isNear = next.start() - run.end() <= std::max(run.widestGap(), next.widestGap());
        return larger <= largestSizeRatio * smaller && isNear &&
               (run.isFollowedFrom(next.start()) || next.start() > run.end());
    }
};

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

bool hasBlankBefore(const GlyphRun &run, std::size_t index, double blankGap)
{
    const PlacedGlyph &glyph = run.glyphs[index];
    return index > 0 &&
           (glyph.hasBlankBefore ||
            (!glyph.isContinuation && glyph.start - run.glyphs[index - 1].end > blankGap));
}

/// The text of a line with letters of a right-to-left script.
std::string textInReadingOrder(const GlyphRun &run)
{
    const double blank = run.blankGap();
    std::vector<std::u32string> units;
    for (std::size_t i = 0; i < run.glyphs.size(); ++i) {
        const PlacedGlyph &glyph = run.glyphs[i];
        const bool isSpaced = hasBlankBefore(run, i, blank);
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
        if (hasBlankBefore(run, i, blank))
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
        return {line.across - line.size, line.across};
    const double above = line.isMirrored ? ascentEm : -ascentEm;
    const double below = line.isMirrored ? ascentEm - 1 : 1 - ascentEm;
    return std::minmax(line.across + above * line.size, line.across + below * line.size);
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
    std::vector<SortedRun> sorted;
    sorted.reserve(runs.size());
    for (GlyphRun &run : runs)
        sorted.push_back({directionKey(run.line), run.line.across, &run});
    std::sort(sorted.begin(), sorted.end(), isBefore);
    std::vector<GlyphRun> lines;
    lines.reserve(runs.size());
    for (auto begin = sorted.begin(); begin != sorted.end();) {
        const SortedRun first = *begin;
        auto end = std::find_if_not(begin, sorted.end(), [&](const SortedRun &entry) {
            return isOnSameLine(first, entry);
        });
        for (auto entry = begin; entry != end; ++entry)
            entry->position = entry->run->start();
        std::sort(begin, end, isBefore);
        LineJoiner line;
        for (auto entry = begin; entry != end; ++entry)
            line.add(std::move(*entry->run));
        std::move(line.joined.begin(), line.joined.end(), std::back_inserter(lines));
        begin = end;
    }
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
