// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/glyphrun.h"

#include <utility>
#include <vector>

namespace pdf {

/// A glyph as a page shows it, in layout coordinates (see fragment.h).
struct ShownGlyph
{
    double x = 0; ///< pen position
    double y = 0;
    double advanceX = 0; ///< way of the pen to the next glyph, without letter spacing
    double advanceY = 0;
    double upX = 0; ///< the font's up vector, its length the font size
    double upY = -1;
    double em = 0; ///< font size along the writing direction
    bool isVertical = false;
    char32_t character = 0;
    bool isContinuation = false; ///< a further character of the glyph before
};

/// Gathers the glyphs of a page into runs as they are drawn.
class GlyphCollector
{
public:
    /// Glyphs whose middle lies outside of width x height pixels are left out.
    GlyphCollector(double pageWidth, double pageHeight) : width(pageWidth), height(pageHeight) {}

    void add(const ShownGlyph &glyph);
    [[nodiscard]] std::vector<GlyphRun> takeRuns() { return std::move(runs); }

private:
    [[nodiscard]] bool isOutside(const ShownGlyph &glyph) const;
    [[nodiscard]] bool continuesRun(const Baseline &line, double start) const;
    [[nodiscard]] bool isRepetition(const Baseline &line, const PlacedGlyph &glyph) const;

    double width;
    double height;
    std::vector<GlyphRun> runs;
    bool hasBlank = false;
    bool skipsContinuations = false;
};

} // namespace pdf
