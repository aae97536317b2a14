// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/nearlines.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <vector>

namespace pdf {

namespace {

/// Browsers make small letters 0.83 of the others' size, most other producers 0.5 to 0.7.
constexpr double largestSmallSize = 0.87;
constexpr double smallestSmallSize = 0.35;
/// Where small letters stand, in font sizes of the line: producers raise them by 0.33 to 0.45 and
/// lower them by 0.08 to 0.3. A label in small print above a field stands 0.7 above it at least.
constexpr double highest = 0.55;
constexpr double lowest = -0.35;
constexpr double shadowSizes = 0.35;
/// What the letters of a word are apart at most.
constexpr double tightEm = 0.12;
/// How far letters reach under the one before, in the tightest of all ("LATEX").
constexpr double overlapEm = 0.4;

/// Whether both show the same text, letter by letter so close that only one can be read.
bool isShadow(const GlyphRun &a, const GlyphRun &b)
{
    constexpr double sameSizeRatio = 1.05;
    constexpr double shadowAdvances = 0.4;
    const double em = std::min(a.line.em, b.line.em);
    if (a.glyphs.empty() || a.glyphs.size() != b.glyphs.size())
        return false;
    const double distance = std::abs(a.start() - b.start());
    return std::abs(a.line.across - b.line.across) <= shadowSizes * a.line.size &&
           distance <= shadowSizes * em &&
           (a.glyphs.size() > 1 || distance <= shadowAdvances * (a.end() - a.start())) &&
           std::max(a.line.em, b.line.em) <= sameSizeRatio * em &&
           std::equal(a.glyphs.begin(), a.glyphs.end(), b.glyphs.begin(),
                      [](const PlacedGlyph &one, const PlacedGlyph &other) {
                          return one.character == other.character;
                      });
}

/// Whether small letters of that line, by its place and size, can belong to the other one.
bool isPlaceOfSmallLetters(const Baseline &line, const Baseline &small)
{
    const double raised = (line.across - small.across) * (line.isMirrored ? -1 : 1);
    return !line.isVertical && raised <= highest * line.size && raised >= lowest * line.size &&
           small.size >= smallestSmallSize * line.size && small.size <= line.size;
}

/// The place among the run's letters at which the small ones are read, 0 where they stand apart.
std::size_t placeOfSmallLetters(const GlyphRun &run, const GlyphRun &small)
{
    const auto &glyphs = run.glyphs;
    const double em = run.line.em;
    const double tight = tightEm * em + run.letterSpacing();
    auto next = std::upper_bound(
        glyphs.begin(), glyphs.end(), small.start(),
        [](double start, const PlacedGlyph &glyph) { return start < glyph.start; });
    if (next == glyphs.begin() || small.glyphs.front().hasBlankBefore)
        return 0;
    const double gapBefore = small.start() - std::prev(next)->end;
    if (gapBefore > tight || gapBefore < -overlapEm * em)
        return 0;
    const bool isLast = next == glyphs.end();
    if (!isLast && next->start - small.end() < -overlapEm * em)
        return 0;
    // Letters of the same size are meant to be within a word only where it goes on behind them.
    const bool isEnclosed = !isLast && next->start - small.end() <= tight;
    if (small.line.size > largestSmallSize * run.line.size && !isEnclosed)
        return 0;
    return static_cast<std::size_t>(next - glyphs.begin());
}

class NearLines
{
public:
    explicit NearLines(Lines &pageLines) : lines(pageLines), runs(pageLines.runs)
    {
        starts.reserve(runs.size());
        sizes.reserve(lines.begins.size());
        for (std::size_t line = 0; line + 1 < lines.begins.size(); ++line) {
            double largest = 0;
            for (std::size_t i = lines.begins[line]; i < lines.begins[line + 1]; ++i) {
                largest = std::max(largest, runs[i].line.size);
                starts.push_back(runs[i].start());
            }
            sizes.push_back(largest);
        }
    }

    void join()
    {
        if (sizes.empty())
            return;
        const double largest = *std::max_element(sizes.begin(), sizes.end());
        for (std::size_t first = 0; first < sizes.size(); ++first) {
            removeShadows(first, first);
            for (std::size_t second = first + 1;
                 second < sizes.size() && isWithin(highest * largest, first, second); ++second) {
                if (!isWithin(highest * std::max(sizes[first], sizes[second]), first, second))
                    continue;
                removeShadows(first, second);
                joinSmallLetters(first, second);
                joinSmallLetters(second, first);
            }
        }
        runs.erase(std::remove_if(runs.begin(), runs.end(),
                                  [](const GlyphRun &run) { return run.glyphs.empty(); }),
                   runs.end());
    }

private:
    [[nodiscard]] bool isWithin(double distance, std::size_t first, std::size_t second) const
    {
        const Baseline &a = runs[lines.begins[first]].line;
        const Baseline &b = runs[lines.begins[second]].line;
        return b.across - a.across <= distance && directionKey(a) == directionKey(b);
    }

    /// The last run of a line that starts before the place, or the line's first one.
    [[nodiscard]] std::size_t runAt(std::size_t line, double place) const
    {
        const auto begin = starts.begin() + static_cast<std::ptrdiff_t>(lines.begins[line]);
        const auto end = starts.begin() + static_cast<std::ptrdiff_t>(lines.begins[line + 1]);
        const auto next = std::upper_bound(begin, end, place);
        return static_cast<std::size_t>((next == begin ? next : std::prev(next)) - starts.begin());
    }

    /// Of a text and its shadow what was drawn last stays, because it lies on top.
    void removeShadows(std::size_t first, std::size_t second)
    {
        const std::size_t end = lines.begins[second + 1];
        for (std::size_t i = lines.begins[first]; i < lines.begins[first + 1]; ++i) {
            const double reach = shadowSizes * runs[i].line.em;
            std::size_t j = first == second ? i + 1 : runAt(second, starts[i] - reach);
            for (; j < end && starts[j] <= starts[i] + reach && !runs[i].glyphs.empty(); ++j) {
                if (isShadow(runs[i], runs[j]))
                    (runs[i].order < runs[j].order ? runs[i] : runs[j]).glyphs.clear();
            }
        }
    }

    void joinSmallLetters(std::size_t line, std::size_t smallLine)
    {
        for (std::size_t i = lines.begins[smallLine]; i < lines.begins[smallLine + 1]; ++i) {
            // Small letters behind two words have been joined where only a letter parts them.
            while (!runs[i].glyphs.empty() && joinFirstWord(line, runs[i])) {
            }
        }
    }

    /// Moves the first word of the small letters into the line if it belongs there.
    bool joinFirstWord(std::size_t line, GlyphRun &small)
    {
        std::size_t at = runAt(line, small.start());
        while (at > lines.begins[line] && runs[at].glyphs.empty())
            --at;
        GlyphRun &run = runs[at];
        if (run.glyphs.empty() || !isPlaceOfSmallLetters(run.line, small.line))
            return false;
        GlyphRun word;
        word.line = small.line;
        const auto wordEnd = small.glyphs.begin() + small.firstWordLength();
        word.glyphs.assign(small.glyphs.begin(), wordEnd);
        std::size_t next = at + 1;
        while (next < lines.begins[line + 1] && runs[next].glyphs.empty())
            ++next;
        const bool hasNext = next < lines.begins[line + 1];
        const std::size_t place = placeOfSmallLetters(run, word);
        if (place == 0 || (hasNext && starts[next] - word.end() < -overlapEm * run.line.em))
            return false;
        run.insert(place, word.glyphs);
        small.glyphs.erase(small.glyphs.begin(), wordEnd);
        if (hasNext && isContinuedBy(run, runs[next])) {
            run.append(runs[next]);
            runs[next].glyphs.clear();
        }
        return true;
    }

    Lines &lines;
    std::vector<GlyphRun> &runs;
    std::vector<double> starts; ///< of the runs, which may have given their letters away
    std::vector<double> sizes;  ///< the largest of each line
};

} // namespace

void joinNearLines(Lines &lines)
{
    NearLines(lines).join();
}

} // namespace pdf
