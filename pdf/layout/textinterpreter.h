// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/fontglyphs.h"
#include "pdf/layout/glyphcollector.h"
#include "pdf/layout/matrix.h"

#include <string>
#include <string_view>
#include <vector>

namespace pdf {

/// Where text stands on a page, followed operator by operator (ISO 32000-1, 8.4, 9.3 and 9.4), and
/// the glyphs that result, for a collector. How a glyph is drawn does not matter: filled, stroked,
/// used for clipping, or not at all as in the text layer of a scan.
///
/// Functions that may need memory throw std::bad_alloc; some call MuPDF, whose exceptions pass.
class TextInterpreter
{
public:
    /// ISO 32000-1, 9.3.1, with lengths in text space.
    struct TextState
    {
        FontGlyphs *font = nullptr;
        double size = 0;
        double characterSpacing = 0;
        double wordSpacing = 0;
        double horizontalScale = 1;
        double leading = 0;
        double rise = 0;

        [[nodiscard]] bool isVertical() const { return font != nullptr && font->isVertical(); }
        /// What the pen's way is stretched by: in vertical writing, nothing.
        [[nodiscard]] double scaleAlong() const { return isVertical() ? 1 : horizontalScale; }
    };
    /// What a stream (a page's contents or a form) finds, and leaves to the one around it.
    struct Surroundings
    {
        std::size_t lowestState = 0;
        int lowestMarked = 0;
        Matrix textMatrix;
        Matrix lineMatrix;
    };

    /// All must outlive the interpreter. The transformation leads from the page's own coordinates
    /// to layout pixels.
    TextInterpreter(fz_context *usedContext, FontStore *usedFonts, GlyphCollector *usedCollector,
                    const Matrix &toPixels);

    /// Back to the page's own state, whatever the last stream left open.
    void startOver();

    [[nodiscard]] TextState &text() { return states.back().text; }
    [[nodiscard]] const TextState &text() const { return states.back().text; }
    void setFont(pdf_font_desc *font, double size);
    void save();
    void restore();
    void transform(const Matrix &matrix);

    void setTextMatrix(const Matrix &matrix) { textMatrix = lineMatrix = matrix; }
    void moveLine(double x, double y);
    void moveToNextLine() { moveLine(0, -text().leading); }
    /// Moves the pen against the writing direction, by thousandths of an em.
    void moveBack(double thousandths);
    /// What is hidden moves the pen only.
    void show(std::string_view string, bool isHidden);

    /// The box is what is seen of the form, in its own coordinates; an empty one says nothing.
    [[nodiscard]] Surroundings enterForm(const Matrix &matrix, const fz_rect &box);
    void leaveForm(const Surroundings &around);

    void beginMarked() { ++markedDepth; }
    /// Begins marked content that stands for another text than its glyphs (ISO 32000-1, 14.9.4).
    void beginReplaced(std::u32string text);
    void endMarked();

private:
    struct GraphicsState
    {
        Matrix toPixels;
        TextState text;
        ClipBox clip;
    };

    void clip(const fz_rect &box);
    void movePen(double way);
    void showGlyph(const FontGlyph &glyph, Matrix place, const TextAxes &axes);
    [[nodiscard]] double wayToMiddle(const FontGlyph &glyph, const Matrix &place,
                                     const TextAxes &axes) const;

    fz_context *context;
    FontStore *fonts;
    GlyphCollector *collector;
    std::vector<GraphicsState> states;
    /// States that the running stream cannot remove. The first is the page's own, unchanged.
    std::size_t lowestState = 2;
    Matrix textMatrix;
    Matrix lineMatrix;
    int markedDepth = 0;   ///< nesting of marked content
    int lowestMarked = 0;  ///< what the running stream cannot end of it
    int replacedDepth = 0; ///< of the content whose text is stated, 0 outside of such
};

} // namespace pdf
