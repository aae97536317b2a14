// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/lines.h"

#include "pdf/layout/characters.h"

#include <algorithm>
#include <cmath>
#include <iterator>
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
    double lineAcross; ///< of the line's first run, the run's own while the line is not known
    int line;          ///< order of the line's first run
    double start;
    double across; ///< the run's own, here like its size because so many are compared
    double size;
    GlyphRun *run;
};

bool isBefore(const SortedRun &a, const SortedRun &b)
{
    return std::tie(a.direction, a.lineAcross, a.line, a.start, a.run->order) <
           std::tie(b.direction, b.lineAcross, b.line, b.start, b.run->order);
}

using Sorted = std::vector<SortedRun>;

/// The end of the runs whose baselines follow each other so closely that some of them may share a
/// line.
Sorted::iterator endOfNear(Sorted::iterator begin, Sorted::iterator end)
{
    double largest = begin->size;
    auto next = begin + 1;
    for (; next != end && next->direction == begin->direction; ++next) {
        largest = std::max(largest, next->size);
        if (next->across - std::prev(next)->across > sameLineSizes * largest)
            break;
    }
    return next;
}

bool isLevel(const SortedRun &a, const SortedRun &b)
{
    return std::abs(a.across - b.across) <= sameLineSizes * std::min(a.size, b.size);
}

/// Sorts near runs into lines. A run shares the line of the one before it that it is level with;
/// what stands elsewhere on the line has no say, or a field would be grouped by its neighbours.
void sortIntoLines(Sorted::iterator begin, Sorted::iterator end)
{
    // So many runs farther left is far away; looking at all of them would take their square.
    constexpr std::ptrdiff_t farthest = 1024;
    for (auto entry = begin; entry != end; ++entry) {
        entry->lineAcross = 0;
        entry->line = 0;
    }
    std::sort(begin, end, isBefore);
    for (auto entry = begin; entry != end; ++entry) {
        entry->lineAcross = entry->across;
        entry->line = entry->run->order;
        const auto first = entry - std::min(farthest, entry - begin);
        for (auto before = entry; before != first;) {
            --before;
            if (isLevel(*before, *entry)) {
                entry->lineAcross = before->lineAcross;
                entry->line = before->line;
                break;
            }
        }
    }
    std::sort(begin, end, isBefore);
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
    std::vector<PlacedGlyph> kept;
    kept.reserve(glyphs.size());
    bool isGone = false;
    for (const PlacedGlyph &glyph : glyphs) {
        // A ligature's further letters have no width to compare by; they go with the first one.
        if (!glyph.isContinuation)
            isGone = isRepeated(glyph);
        if (!isGone)
            kept.push_back(glyph);
    }
    const std::size_t count = glyphs.size() - kept.size();
    if (count >= fewestRepeated || 2 * count >= glyphs.size())
        glyphs = std::move(kept);
}

/// Before which of the run's glyphs the other one stands if it fills a gap between two of them,
/// else 0: a letter that the font does not have is shown in another font, often after the line.
std::size_t gapFilledBy(const GlyphRun &run, const GlyphRun &other)
{
    constexpr double overlapEm = 0.1;        // kerning
    constexpr double largestSizeRatio = 1.2; // raised letters are another matter
    const auto &glyphs = run.glyphs;
    const double overlap = overlapEm * run.line.em;
    const auto next = std::upper_bound(
        glyphs.begin(), glyphs.end(), other.start(),
        [](double start, const PlacedGlyph &glyph) { return start < glyph.start; });
    const bool isInside = next != glyphs.begin() && next != glyphs.end() && !next->hasBlankBefore &&
                          other.start() >= std::prev(next)->end - overlap &&
                          other.end() <= next->start + overlap &&
                          std::max(run.line.size, other.line.size) <=
                              largestSizeRatio * std::min(run.line.size, other.line.size);
    return isInside ? static_cast<std::size_t>(next - glyphs.begin()) : 0;
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
        if (count > 0 && run.start() < joined.back().end()) {
            if (const std::size_t place = gapFilledBy(joined.back(), run)) {
                joined.back().insert(place, run.glyphs);
                return;
            }
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
    const double gap = next.start() - run.end();
    const auto isNear = [&] {
        return gap > 0 && gap <= std::max(run.widestGap(hasBlank), next.widestGap(hasBlank));
    };
    return larger <= largestSizeRatio * smaller &&
           (run.isFollowedFrom(next.start(), hasBlank) || isNear());
}

Lines joinLines(std::vector<GlyphRun> runs)
{
    Sorted sorted;
    sorted.reserve(runs.size());
    for (GlyphRun &run : runs)
        sorted.push_back({directionKey(run.line), run.line.across, 0, run.start(), run.line.across,
                          run.line.size, &run});
    std::sort(sorted.begin(), sorted.end(), isBefore);
    Lines lines;
    lines.runs.reserve(runs.size());
    for (auto near = sorted.begin(); near != sorted.end();) {
        const auto end = endOfNear(near, sorted.end());
        sortIntoLines(near, end);
        while (near != end) {
            const SortedRun first = *near;
            lines.begins.push_back(lines.runs.size());
            LineJoiner line(lines.runs);
            for (; near != end && near->line == first.line; ++near)
                line.add(std::move(*near->run));
        }
    }
    lines.begins.push_back(lines.runs.size());
    return lines;
}

} // namespace pdf
