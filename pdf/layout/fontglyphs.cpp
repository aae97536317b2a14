// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/fontglyphs.h"

#include "pdf/layout/characters.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pdf {

namespace {

constexpr std::size_t byteCodes = 256;
/// Fonts kept from page to page; a document of merged parts may have thousands.
constexpr std::size_t largestStore = 32;

bool readsSingleBytes(const pdf_cmap *encoding)
{
    return encoding->codespace_len == 1 && encoding->codespace[0].n == 1 &&
           encoding->codespace[0].low == 0 && encoding->codespace[0].high == 0xFF;
}

/// The size of the letters of a font of size 1. Fonts of drawings may have any: those made of
/// pixels often count in these and are used at the size of one.
double letterSize(fz_context *context, const pdf_font_desc *description)
{
    constexpr double usual = 3; // what letters differ by where the size is meant to be theirs
    constexpr double unitsPerEm = 1000;
    if (description->font->t3procs == nullptr)
        return 1;
    int widest = 0;
    for (int i = 0; i < description->hmtx_len; ++i)
        widest = std::max(widest, description->hmtx[i].w);
    // The box may be missing or wrong, and is as high as all letters together where it is right.
    const fz_rect box = fz_font_bbox(context, description->font);
    const double width = widest / unitsPerEm;
    const double size = std::clamp(static_cast<double>(box.y1 - box.y0), width, 4 * width);
    return size > usual || (size > 0 && size < 1 / usual) ? size : 1;
}

/// The size rounded to a power of eight. The corner of a field must not depend on the letters that
/// its font happens to have, and merged documents bring a font each for the same field.
double roundedSize(double size)
{
    return std::exp2(3 * std::round(std::log2(size) / 3));
}

/// Whether another font stands in for one that the document does not bring along. The standard 14
/// fonts (ISO 32000-1, 9.6.2.2) and those that look like them never have to be brought along.
bool isMissing(fz_context *context, const pdf_font_desc *description)
{
    fz_font *font = description->font;
    const char *name = fz_font_name(context, font);
    return fz_font_flags(font)->ft_substitute ||
           (!description->is_embedded && font->t3procs == nullptr &&
            pdf_clean_font_name(name) == name);
}

/// Whether the document's tables state nothing: no character, or one that stands for none.
bool isNoCharacter(const int *characters, int count)
{
    const int first = characters[0];
    return count == 0 ||
           (count == 1 && (first == 0 || first == FZ_REPLACEMENT_CHARACTER ||
                           (first >= 0xD800 && first <= 0xDFFF) || (first & 0xFFFE) == 0xFFFE));
}

/// Puts right what one version of a widespread distiller wrote of ligatures: two letters with
/// their bytes swapped, and of "ffi" the last two added up (<6600CF00>). Two characters that both
/// end in 00 and begin with the code of a letter are nothing else.
void unswap(FontGlyph &entry)
{
    constexpr char32_t letterF = 'f';
    constexpr int ligature = 2;
    const auto isLetter = [](char32_t c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
    char32_t *const c = entry.characters;
    if (entry.count != ligature || ((c[0] | c[1]) & 0xFF) != 0 || !isLetter(c[0] >> 8))
        return;
    const char32_t last = c[1] >> 8;
    if (isLetter(last)) {
        c[0] >>= 8;
        c[1] = last;
    } else if (c[0] >> 8 == letterF && last > letterF && isLetter(last - letterF)) {
        c[0] = c[1] = letterF;
        c[2] = last - letterF;
        entry.count = ligature + 1;
    }
}

/// Whether the character looks like the hyphen of ASCII, and is another one only for producers that
/// tell them apart.
bool isLikeHyphen(char32_t c)
{
    return c == 0x2010 || c == 0x2011 || c == 0x2212;
}

/// Leaves what is read of several characters: none without a trace, one blank between others, and
/// the letter before its marks, wherever the font's map puts it.
void tidy(FontGlyph &entry)
{
    char32_t *const begin = entry.characters;
    char32_t *end = std::remove_if(begin, begin + entry.count, isDropped);
    end = std::unique(begin, end, [](char32_t a, char32_t b) { return isBlank(a) && isBlank(b); });
    char32_t *const letter = std::find_if_not(begin, end, isMark);
    if (letter != end && !isBlank(*letter))
        std::rotate(begin, letter, letter + 1);
    entry.count = std::max(1, static_cast<int>(end - begin));
}

} // namespace

FontGlyphs::FontGlyphs(fz_context *usedContext, pdf_font_desc *usedFont)
    : context(usedContext), description(usedFont),
      hasByteCodes(readsSingleBytes(usedFont->encoding)), entries(byteCodes),
      em(letterSize(usedContext, usedFont)), boxHeight(roundedSize(em)),
      unknownGlyphs(usedContext, usedFont)
{
    pdf_keep_font(context, description);
}

FontGlyphs::~FontGlyphs()
{
    pdf_drop_font(context, description);
}

const FontGlyph &FontGlyphs::lookUp(std::string_view string)
{
    // MuPDF reads the codes through a pointer that is not const, but changes nothing.
    auto *begin = reinterpret_cast<unsigned char *>(const_cast<char *>(string.data()));
    unsigned code = 0;
    const int length = pdf_decode_cmap(description->encoding, begin, begin + string.size(), &code);
    FontGlyph &entry = entries[code % byteCodes];
    const unsigned codeLength = static_cast<unsigned>(std::max(1, length));
    if (entry.isKnown && entry.code == code && entry.codeLength == codeLength)
        return entry;
    entry = FontGlyph();
    entry.code = code;
    entry.codeLength = codeLength;
    fill(entry);
    entry.isKnown = true;
    return entry;
}

void FontGlyphs::fill(FontGlyph &entry)
{
    constexpr double unitsPerEm = 1000;
    const int cid = pdf_lookup_cmap(description->encoding, entry.code);
    entry.isShown = cid >= 0;
    if (!entry.isShown)
        return;
    entry.glyph = pdf_font_cid_to_gid(context, description, cid);
    if (isVertical()) {
        const pdf_vmtx metrics = pdf_lookup_vmtx(context, description, cid);
        entry.penStep = metrics.w / unitsPerEm;
        entry.originX = metrics.x / unitsPerEm;
        entry.originY = metrics.y / unitsPerEm;
    } else {
        entry.penStep = pdf_lookup_hmtx(context, description, cid).w / unitsPerEm;
    }
    // The pen tells where the next letter is meant to be; programs may state wrong advances or
    // none, and viewers do not look at them.
    constexpr double widestEm = 4;
    entry.advance = isVertical() ? -entry.penStep : entry.penStep;
    if (!(entry.advance > 0 && entry.advance < widestEm))
        entry.advance = static_cast<double>(
            fz_advance_glyph(context, description->font, entry.glyph, isVertical() ? 1 : 0));
    entry.advance /= em;
    fillCharacters(entry, cid);
}

void FontGlyphs::fillCharacters(FontGlyph &entry, int cid)
{
    int characters[PDF_MRANGE_CAP] = {};
    int count = 0;
    if (description->to_unicode != nullptr)
        count =
            pdf_lookup_cmap_full(description->to_unicode, static_cast<unsigned>(cid), characters);
    const bool isFromEncoding = isNoCharacter(characters, count) &&
                                static_cast<std::size_t>(cid) < description->cid_to_ucs_len;
    if (isFromEncoding) {
        characters[0] = description->cid_to_ucs[cid];
        count = 1;
    }
    for (int i = 0; i < count; ++i)
        entry.characters[i] = static_cast<char32_t>(characters[i]);
    entry.count = count;
    const bool isStated = !isNoCharacter(characters, count);
    const bool isControlled = count == 1 && isControl(entry.characters[0]);
    // Subsets that number their letters from 1 on have one at the code of the blank.
    const bool isNumbered =
        isFromEncoding && entry.characters[0] == ' ' && description->is_embedded;
    if (!isStated || isControlled || isNumbered) {
        char32_t read[2] = {};
        int known = unknownGlyphs.read(entry.glyph, read);
        if (known == 0 && !isStated)
            known = unknownGlyphs.readCode(entry.code, read);
        if (known > 0) {
            std::copy(read, read + known, entry.characters);
            entry.count = known;
        }
    } else if (count > 1) {
        unswap(entry);
        tidy(entry);
    } else if (isLikeHyphen(entry.characters[0]) && description->font->t3procs == nullptr &&
               unknownGlyphs.known(entry.glyph) == '-') {
        entry.characters[0] = '-';
    }
}

FontGlyphs *FontStore::glyphs(pdf_font_desc *font)
{
    const auto found = std::find_if(fonts.begin(), fonts.end(),
                                    [font](const auto &known) { return known->font() == font; });
    if (found != fonts.end())
        return found->get();
    fonts.push_back(std::make_unique<FontGlyphs>(context, font));
    if (missing.empty() && isMissing(context, font))
        missing = fz_font_name(context, font->font);
    return fonts.back().get();
}

void FontStore::forgetUnused()
{
    if (fonts.size() > largestStore)
        fonts.clear();
}

} // namespace pdf
