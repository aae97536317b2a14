// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/glyphrun.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace pdf {

/// A rectangle in layout coordinates; all of the plane unless told.
struct ClipBox
{
    double left = -HUGE_VAL;
    double top = -HUGE_VAL;
    double right = HUGE_VAL;
    double bottom = HUGE_VAL;

    [[nodiscard]] bool contains(double x, double y) const
    {
        return x >= left && y >= top && x <= right && y <= bottom;
    }
};

/// What all glyphs of a piece of text share, in layout coordinates (see fragment.h).
struct TextAxes
{
    /// The font's way of the pen to the right (downwards in vertical writing) and its up vector,
    /// each as long as the font size in that direction.
    TextAxes(double alongX, double alongY, double upwardsX, double upwardsY, bool isVertical);

    Baseline line; ///< without its place
    double upX;
    double upY;
    ClipBox clip; ///< what lies outside is not seen
};

/// A glyph as a page shows it, in layout coordinates.
struct ShownGlyph
{
    double x = 0; ///< pen position
    double y = 0;
    double advance = 0; ///< way of the pen to the next glyph in em, without letter spacing
    /// Way along the line from the pen to the middle of the shape, for marks and what does not move
    /// the pen: the pen of a mark may be anywhere, its shape is over the letter it belongs to.
    double toMiddle = 0;
    char32_t character = 0;
    bool isContinuation = false; ///< a further character of the glyph before
    bool movesPen = true;        ///< the document states an advance of its own
};

/// Gathers the glyphs of a page into runs as they are drawn.
class GlyphCollector
{
public:
    /// Glyphs whose middle lies outside of width x height pixels, or of their clip box, are left
    /// out.
    GlyphCollector(double pageWidth, double pageHeight) : width(pageWidth), height(pageHeight) {}

    /// The glyphs that follow are those of another string.
    void beginString() { ++strings; }
    void add(const TextAxes &axes, const ShownGlyph &glyph);

    /// Between these two the glyphs show a text that the document states apart from them
    /// (ActualText; ISO 32000-1, 14.9.4). It takes their place where they stand on one line, in
    /// one fragment. How a longer text falls into lines, and which part of it is seen where glyphs
    /// are outside, is not known, so the glyphs stay.
    void beginReplacement(std::u32string text);
    void endReplacement();

    /// All runs, once the page has been drawn.
    [[nodiscard]] std::vector<GlyphRun> takeRuns();
    /// Accents and vowel points that were drawn by themselves, a run each, at their middles. Take
    /// them after the runs.
    [[nodiscard]] std::vector<GlyphRun> takeMarks();

private:
    void show(const TextAxes &axes, const ShownGlyph &glyph);
    void showBlank(const TextAxes &axes, const ShownGlyph &glyph);
    /// Takes marks and what leaves no trace; false for everything else.
    [[nodiscard]] bool showsNoLetter(const Baseline &line, const PlacedGlyph &glyph,
                                     double toMiddle);
    /// Takes the accent drawn last as that of the glyph drawn over or under it now, else as a
    /// character of its own.
    void settleAccent(const TextAxes &axes, const ShownGlyph &glyph);
    void addMark(const Baseline &line, double middle, char32_t mark);
    void place(const Baseline &line, const PlacedGlyph &glyph);
    void replace(const GlyphRun &shown);
    [[nodiscard]] bool isOutside(const TextAxes &axes, const ShownGlyph &glyph) const;
    /// Whether the last blank was shown right before the place.
    [[nodiscard]] bool isBehindBlank(const Baseline &line, double start) const;
    /// Whether the spacing within a string has taken the pen back over the last blank, so that
    /// nothing is seen of it.
    [[nodiscard]] bool isBlankTakenBack(const Baseline &line, double start) const;
    [[nodiscard]] bool isOnLastLine(const Baseline &line) const;
    /// Only for what is on the last run's line.
    [[nodiscard]] bool continuesRun(const Baseline &line, double start, bool isSpaced) const;

    double width;
    double height;
    std::vector<GlyphRun> runs;
    std::vector<GlyphRun> marks;
    int strings = 0;
    bool hasBlank = false;
    double blankX = 0; ///< pen position of the last blank
    double blankY = 0;
    double blankAdvance = 0; ///< in pixels
    int blankString = 0;     ///< number of the string in which it moves the pen, else 0
    bool skipsContinuations = false;
    bool hasAccent = false; ///< whether the last glyph was an accent standing alone
    Baseline accentLine;
    PlacedGlyph accent;
    bool isReplacing = false;
    std::u32string replacement;
    std::vector<std::pair<TextAxes, ShownGlyph>> replaced;
};

} // namespace pdf
