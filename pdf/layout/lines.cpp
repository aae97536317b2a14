// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/lines.h"

#include "pdf/layout/characters.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace pdf {

namespace {

/// Runs this far apart, in font sizes, still stand on one line: the words of a recognised scan do
/// not agree better, and the closest raised letters are twice as far up.
constexpr double sameLineSizes = 0.15;

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

/// Removes from later the glyphs that earlier shows in the same place. A letter or two among others
/// do not repeat anything: another text, a stamp or a filled-in field, lies over the first one.
void removeRepeated(const GlyphRun &earlier, GlyphRun &later)
{
    constexpr std::size_t fewestRepeated = 3;
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
    const auto count =
        static_cast<std::size_t>(std::count_if(glyphs.begin(), glyphs.end(), isRepeated));
    if (count >= fewestRepeated || 2 * count >= glyphs.size())
        glyphs.erase(std::remove_if(glyphs.begin(), glyphs.end(), isRepeated), glyphs.end());
}

/// Appends the runs of one line, which come by their starts, to those of its fragments.
class LineJoiner
{
public:
    explicit LineJoiner(std::vector<GlyphRun> &joinedRuns)
        : joined(joinedRuns), begin(joinedRuns.size())
    {
    }

    void add(GlyphRun &&run)
    {
        // What a run repeats starts near it; looking at all of a line's runs would take its square.
        constexpr std::size_t farthest = 16;
        const std::size_t count = joined.size() - begin;
        for (std::size_t i = 1; i <= std::min(count, farthest); ++i) {
            const GlyphRun &earlier = joined[joined.size() - i];
            if (earlier.end() <= run.start())
                continue;
            removeRepeated(earlier, run);
            if (run.glyphs.empty())
                return;
        }
        if (count > 0 && isContinuedBy(joined.back(), run)) {
            joined.back().append(run);
            return;
        }
        const std::size_t letters = spacedLettersBefore(run);
        joined.push_back(std::move(run));
        const auto first = joined.end() - 1 - static_cast<std::ptrdiff_t>(letters);
        for (auto next = first + 1; next != joined.end(); ++next)
            first->append(*next);
        joined.erase(first + 1, joined.end());
    }

private:
    /// How many of the last runs are letters of one word with this one, at equal distances. Letters
    /// of one string are. Letters that were placed one by one could as well be the cells of a
    /// table, whose distances, with letters of different widths, are not that equal.
    [[nodiscard]] std::size_t spacedLettersBefore(const GlyphRun &last) const
    {
        constexpr double widestEm = 1;
        constexpr double noiseEm = 0.03;
        constexpr std::size_t fewestOfString = 2;
        constexpr std::size_t fewestPlaced = 3;
        const std::size_t count = std::min(joined.size() - begin, fewestPlaced);
        if (count < fewestOfString || last.glyphs.size() != 1)
            return 0;
        const double em = last.line.em;
        const double gap = last.start() - joined.back().end();
        bool isOfString = gap <= widestEm * em;
        bool isPlaced = isOfString;
        const GlyphRun *next = &last;
        for (std::size_t i = 1; i <= count; ++i) {
            const GlyphRun &run = joined[joined.size() - i];
            if (run.glyphs.size() != 1 || std::abs(next->start() - run.end() - gap) > noiseEm * em)
                return 0;
            isOfString = isOfString && run.string == last.string;
            isPlaced = isPlaced && run.order + 1 == next->order && run.line.em == em &&
                       isLetter(run.glyphs[0].character);
            if (i == fewestOfString && isOfString)
                return i;
            next = &run;
        }
        return isPlaced && isLetter(last.glyphs[0].character) && count == fewestPlaced ? count : 0;
    }

    std::vector<GlyphRun> &joined;
    std::size_t begin;
};

} // namespace

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

bool isContinuedBy(const GlyphRun &run, const GlyphRun &next)
{
    constexpr double largestSizeRatio = 2;
    const double larger = std::max(run.line.size, next.line.size);
    const double smaller = std::min(run.line.size, next.line.size);
    const bool hasBlank = next.glyphs.front().hasBlankBefore;
    const bool isNear =
        next.start() - run.end() <= std::max(run.widestGap(hasBlank), next.widestGap(hasBlank));
    return larger <= largestSizeRatio * smaller && isNear &&
           (run.isFollowedFrom(next.start(), hasBlank) || next.start() > run.end());
}

Lines joinLines(std::vector<GlyphRun> runs)
{
    std::vector<SortedRun> sorted;
    sorted.reserve(runs.size());
    for (GlyphRun &run : runs)
        sorted.push_back({directionKey(run.line), run.line.across, &run});
    std::sort(sorted.begin(), sorted.end(), isBefore);
    Lines lines;
    lines.runs.reserve(runs.size());
    for (auto begin = sorted.begin(); begin != sorted.end();) {
        const SortedRun first = *begin;
        const auto end = std::find_if_not(begin, sorted.end(), [&](const SortedRun &entry) {
            return isOnSameLine(first, entry);
        });
        for (auto entry = begin; entry != end; ++entry)
            entry->position = entry->run->start();
        std::sort(begin, end, isBefore);
        lines.begins.push_back(lines.runs.size());
        LineJoiner line(lines.runs);
        for (auto entry = begin; entry != end; ++entry)
            line.add(std::move(*entry->run));
        begin = end;
    }
    lines.begins.push_back(lines.runs.size());
    return lines;
}

} // namespace pdf
