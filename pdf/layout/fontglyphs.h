// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/unknownglyphs.h"

#include <memory>
#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
#include <string>
#include <string_view>
#include <vector>

namespace pdf {

/// What one character code of a font shows. Lengths are in em.
struct FontGlyph
{
    bool isKnown = false; ///< the entry has been filled
    bool isShown = false; ///< the font has a character for the code
    unsigned code = 0;
    unsigned codeLength = 0; ///< bytes in the string
    int glyph = 0;           ///< number in the font program
    double penStep = 0;      ///< way of the pen to the next glyph, in font sizes
    double advance = 0;      ///< the same along the line in em, also where the document has none
    double originX = 0;      ///< vertical writing: from the glyph's origin to the pen
    double originY = 0;
    int count = 0;                       ///< characters
    char32_t characters[PDF_MRANGE_CAP]; ///< several for a ligature, no two blanks in a row; see
                                         ///< UnknownGlyphs, too
};

/// The glyphs of a font by their codes. Each is asked for once: a page shows the same fifty letters
/// a thousand times, and what MuPDF knows of a letter is spread over five tables.
class FontGlyphs
{
public:
    FontGlyphs(fz_context *usedContext, pdf_font_desc *usedFont);
    ~FontGlyphs();
    FontGlyphs(const FontGlyphs &) = delete;
    FontGlyphs &operator=(const FontGlyphs &) = delete;

    [[nodiscard]] pdf_font_desc *font() const { return description; }
    [[nodiscard]] bool isVertical() const { return description->wmode != 0; }
    /// An em in font sizes: 1, but for some fonts whose letters are drawings.
    [[nodiscard]] double emSize() const { return em; }
    /// The height of the letters' boxes in font sizes: about an em.
    [[nodiscard]] double boxSize() const { return boxHeight; }

    /// The glyph that the string starts with, which must not be empty. Valid until the next call.
    /// Throws std::bad_alloc and MuPDF exceptions.
    [[nodiscard]] const FontGlyph &first(std::string_view string)
    {
        if (hasByteCodes) {
            const FontGlyph &entry = entries[static_cast<unsigned char>(string.front())];
            if (entry.isKnown)
                return entry;
        }
        return lookUp(string);
    }

private:
    const FontGlyph &lookUp(std::string_view string);
    void fill(FontGlyph &entry);
    void fillCharacters(FontGlyph &entry, int cid);

    fz_context *context;
    pdf_font_desc *description;
    bool hasByteCodes;
    std::vector<FontGlyph> entries; ///< at the remainder of the code by their count
    double em;
    double boxHeight;
    UnknownGlyphs unknownGlyphs;
};

/// The fonts that a document's pages use, with what is known of their glyphs.
class FontStore
{
public:
    explicit FontStore(fz_context *usedContext) : context(usedContext) {}

    /// Valid until forgetUnused(). Throws std::bad_alloc.
    [[nodiscard]] FontGlyphs *glyphs(pdf_font_desc *font);
    /// Keeps the store small; call it between pages.
    void forgetUnused();
    /// The name of a font for which another one had to stand in, because the document does not
    /// bring it along; empty when there was none.
    [[nodiscard]] const std::string &missingFont() const { return missing; }

private:
    fz_context *context;
    std::vector<std::unique_ptr<FontGlyphs>> fonts;
    std::string missing;
};

} // namespace pdf
