// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <vector>

namespace pdf {

/// One visible glyph on its line. Positions are distances along the writing direction, in pixels.
struct PlacedGlyph
{
    double start = 0;            ///< pen position before the glyph
    double end = 0;              ///< pen position after it, without letter spacing
    char32_t character = 0;      ///< first or only character
    bool hasBlankBefore = false; ///< a blank was shown between the glyph before and this one
    bool isContinuation = false; ///< a further character of the glyph before (a ligature's)
};

/// The line that a glyph stands on.
struct Baseline
{
    double directionX = 1; ///< unit vector of the writing direction
    double directionY = 0;
    double across = 0;  ///< distance of the line from the origin, at right angles to the direction,
                        ///< growing clockwise from it (downwards for upright text)
    double size = 0;    ///< font size at right angles to the direction, in pixels
    double boxSize = 0; ///< height of the box, as the size
    double em = 0;      ///< font size along the direction (differs in stretched text)
    bool isVertical = false; ///< vertical writing: glyphs stand side by side across the direction
    bool isMirrored = false; ///< letters' tops point clockwise from the direction's right
};

/// Whether two glyphs of one line are one letter drawn twice, for a bold look or as a shadow.
[[nodiscard]] bool isSameGlyph(const PlacedGlyph &a, const PlacedGlyph &b, double em);

/// Glyphs on one baseline, in the order of their positions once a line is complete.
class GlyphRun
{
public:
    Baseline line;
    std::vector<PlacedGlyph> glyphs;
    int order = 0;  ///< number of the run in the order of drawing
    int string = 0; ///< number of the string that shows the first glyph

    [[nodiscard]] double start() const { return glyphs.front().start; }
    [[nodiscard]] double end() const { return glyphs.back().end; }

    void append(const PlacedGlyph &glyph);
    /// Appends the glyphs of another run. The box gets the height of the largest letters of the
    /// first word: a field in small capitals would have another corner where it begins with a small
    /// one.
    void append(const GlyphRun &next);
    /// Adds letters that stand between its own before the one at the place, which is not the first.
    void insert(std::size_t place, const std::vector<PlacedGlyph> &letters);
    /// Adds the mark to the letter under or over which it stands; gives whether there is one.
    [[nodiscard]] bool takesMark(const GlyphRun &mark);
    /// Whether a glyph or run that starts there follows the last glyph as the next one of a word or
    /// line does. Kerning goes back a little; where a font states wider letters than the producer
    /// reckoned with, the next letter starts inside the last one.
    [[nodiscard]] bool isFollowedFrom(double start, bool hasBlankBefore) const;
    /// Spacing that the run has between its letters, in pixels, 0 in ordinary text: what nearly all
    /// neighbours without a blank between them keep, once there are enough of them to tell.
    [[nodiscard]] double letterSpacing() const;
    /// Widest distance between neighbours within one fragment, in pixels. It is wider where a blank
    /// is shown between them than where nothing but the distance says that there are two words.
    [[nodiscard]] double widestGap(bool hasBlank) const;
    /// Smallest distance between neighbours that reads as a blank, in pixels.
    [[nodiscard]] double blankGap() const;
    /// Whether a blank is read before the glyph; blankGap is the run's.
    [[nodiscard]] bool isBlankBefore(std::size_t index, double blankGap) const;
    [[nodiscard]] std::ptrdiff_t firstWordLength() const;

private:
    [[nodiscard]] bool endsSentence() const;

    int gaps = 0; ///< between letters, without a blank
    int tightGaps = 0;
};

} // namespace pdf
