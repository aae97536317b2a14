// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
#include <string_view>
#include <vector>

namespace pdf {

/// Reads the glyphs of a font for which the document states no character (ISO 32000-1, 9.10.2).
///
/// Two such glyphs must not read alike, or numbers of equal length would be one number. Where the
/// font itself does not tell the character either, a glyph gets a pair of private ones, one of
/// U+F0000 to U+FFFFD and one of U+100000 to U+10FFFD, that follow from its shape: the subsets that
/// merged documents bring along, and the processes that read the pages, agree on them. A pair has
/// 32 bits; with one character alone, one font in 3,000 would have two digits that read alike.
class UnknownGlyphs
{
public:
    /// The font must outlive this.
    UnknownGlyphs(fz_context *usedContext, pdf_font_desc *usedFont)
        : context(usedContext), description(usedFont)
    {
    }

    /// Writes what the glyph reads as by its name, the font's own map or its shape, a blank where
    /// it has none; gives how many characters. 0 when the font does not have the glyph.
    /// Throws std::bad_alloc and MuPDF exceptions.
    [[nodiscard]] int read(int glyph, char32_t *characters);
    /// The character by the glyph's name or the font's own map, 0 where they tell nothing.
    [[nodiscard]] char32_t known(int glyph);
    /// Writes the pair for a code that has no glyph; gives 2.
    [[nodiscard]] int readCode(unsigned code, char32_t *characters) const;

private:
    [[nodiscard]] char32_t named(int glyph) const;
    [[nodiscard]] char32_t mapped(int glyph);

    fz_context *context;
    pdf_font_desc *description;
    std::vector<char16_t> charactersOfGlyphs; ///< by the font's own map; empty before its first use
};

/// Whether the character is one of such a pair.
[[nodiscard]] inline bool isUnknownLetter(char32_t character)
{
    return character >= 0xF0000;
}

/// Whether the text (UTF-8) has letters whose characters are not known.
[[nodiscard]] bool hasUnknownLetters(std::string_view text);

} // namespace pdf
