// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/unknownglyphs.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace pdf {

namespace {

constexpr char32_t firstPrivate = 0xF0000;
constexpr char32_t secondPrivate = 0x100000;

/// A hash (FNV-1a) of all that is drawn for a glyph.
struct Shape
{
    bool isKnown = false;
    bool isEmpty = true;
    std::uint64_t hash = 0xCBF29CE484222325;

    void add(const void *data, std::size_t size)
    {
        constexpr std::uint64_t prime = 0x100000001B3;
        const auto *bytes = static_cast<const unsigned char *>(data);
        for (std::size_t i = 0; i < size; ++i)
            hash = (hash ^ bytes[i]) * prime;
    }
    void add(std::initializer_list<float> numbers)
    {
        for (const float number : numbers)
            add(&number, sizeof number);
    }
};

int writePair(const Shape &shape, char32_t *characters)
{
    constexpr std::uint64_t planeSize = 0xFFFE; // without its two noncharacters
    characters[0] = static_cast<char32_t>(firstPrivate + shape.hash % planeSize);
    characters[1] = static_cast<char32_t>(secondPrivate + shape.hash / planeSize % planeSize);
    return 2;
}

void addMove(fz_context * /*context*/, void *shape, float x, float y)
{
    static_cast<Shape *>(shape)->add({x, y});
}

void addLine(fz_context * /*context*/, void *shape, float x, float y)
{
    static_cast<Shape *>(shape)->isEmpty = false;
    static_cast<Shape *>(shape)->add({x, y});
}

void addCurve(fz_context * /*context*/, void *shape, float x1, float y1, float x2, float y2,
              float x3, float y3)
{
    static_cast<Shape *>(shape)->isEmpty = false;
    static_cast<Shape *>(shape)->add({x1, y1, x2, y2, x3, y3});
}

void addClosing(fz_context * /*context*/, void * /*shape*/)
{
}

/// A damaged glyph has no shape, but its page has other letters. Throws MuPDF exceptions only.
void readOutline(fz_context *context, fz_font *font, int glyph, Shape *shape)
{
    fz_path_walker walker = {};
    walker.moveto = addMove;
    walker.lineto = addLine;
    walker.curveto = addCurve;
    walker.closepath = addClosing;
    fz_path *path = nullptr;
    fz_var(path);
    fz_try(context)
    {
        path = fz_outline_glyph(context, font, glyph, fz_identity);
        if (path != nullptr) {
            fz_walk_path(context, path, &walker, shape);
            shape->isKnown = true;
        }
    }
    fz_always(context)
    {
        fz_drop_path(context, path);
    }
    fz_catch(context)
    {
        if (fz_caught(context) == FZ_ERROR_MEMORY)
            fz_rethrow(context);
    }
}

/// The shape of a glyph that is drawn by operators (ISO 32000-1, 9.6.5).
void readProcedure(fz_context *context, fz_buffer *procedure, int glyph, Shape *shape)
{
    shape->isKnown = true;
    if (procedure == nullptr)
        return;
    unsigned char *data = nullptr;
    const std::size_t size = fz_buffer_storage(context, procedure, &data);
    const std::string_view operators(reinterpret_cast<const char *>(data), size);
    shape->add(data, size);
    // The same name can be another picture in each glyph's own resources.
    if (operators.find(" Do") != operators.npos)
        shape->add(&glyph, sizeof glyph);
    // What comes first states the width: "600 0 d0" or "600 0 0 0 0 0 d1".
    const std::size_t width = operators.find(" d");
    const std::size_t rest = width == operators.npos ? 0 : width + std::strlen(" d0");
    shape->isEmpty = operators.find_first_not_of(" \t\r\n", rest) == operators.npos;
}

/// Whether the name says that the font holds only the letters in use ("ABCDEF+Name"; 9.6.4).
bool isSubset(const char *name)
{
    constexpr std::ptrdiff_t tagLength = 6;
    const char *tagEnd = std::find_if_not(name, name + std::strlen(name),
                                          [](char c) { return c >= 'A' && c <= 'Z'; });
    return tagEnd - name == tagLength && *tagEnd == '+';
}

} // namespace

/// The character of a name of the usual lists or of the kind "uni0041", also of a variant such as
/// "one.lf". Names that only number the glyphs ("g17", "a17") tell nothing.
char32_t UnknownGlyphs::named(int glyph) const
{
    constexpr int unicodeLength = 7;
    char name[64] = {};
    fz_get_glyph_name(context, description->font, glyph, name, sizeof name);
    if (name[0] == '.')
        return 0;
    if (char *variant = std::strchr(name, '.'))
        *variant = '\0';
    const bool isUnicode = std::strncmp(name, "uni", 3) == 0 &&
                           std::strlen(name) == unicodeLength &&
                           std::all_of(name + 3, name + unicodeLength,
                                       [](unsigned char c) { return std::isxdigit(c) != 0; });
    const int character =
        isUnicode ? fz_unicode_from_glyph_name(name) : fz_unicode_from_glyph_name_strict(name);
    return character == FZ_REPLACEMENT_CHARACTER ? 0 : static_cast<char32_t>(character);
}

/// The first character that the font itself has the glyph for. Subsets number their glyphs anew and
/// keep no map or a made-up one. For codes of one byte MuPDF has chosen the map for them, which
/// need not be one of Unicode characters.
char32_t UnknownGlyphs::mapped(int glyph)
{
    constexpr int last = 0xFFFD;
    constexpr std::size_t glyphs = 0x10000;
    fz_font *font = description->font;
    if (!description->is_embedded || isSubset(fz_font_name(context, font)) ||
        description->encoding->codespace_len == 0 || description->encoding->codespace[0].n == 1)
        return 0;
    if (charactersOfGlyphs.empty()) {
        charactersOfGlyphs.resize(glyphs);
        for (int character = ' '; character < last; ++character) {
            const bool isPrivate = character >= 0xD800 && character <= 0xF8FF;
            const int known = isPrivate ? 0 : fz_encode_character(context, font, character);
            char16_t &first = charactersOfGlyphs[static_cast<std::size_t>(known) % glyphs];
            if (first == 0)
                first = static_cast<char16_t>(character);
        }
    }
    return charactersOfGlyphs[static_cast<std::size_t>(glyph) % glyphs];
}

char32_t UnknownGlyphs::known(int glyph)
{
    const char32_t character = named(glyph);
    return character != 0 ? character : mapped(glyph);
}

int UnknownGlyphs::read(int glyph, char32_t *characters)
{
    fz_font *font = description->font;
    const bool isDrawing = font->t3procs != nullptr;
    // The glyph 0 stands for those that a font does not have.
    if (!isDrawing && glyph != 0) {
        characters[0] = known(glyph);
        if (characters[0] != 0)
            return 1;
    }
    Shape shape;
    if (isDrawing)
        readProcedure(context, font->t3procs[glyph & 0xFF], glyph, &shape);
    else if (glyph != 0 || description->is_embedded)
        readOutline(context, font, glyph, &shape);
    if (shape.isKnown && shape.isEmpty) {
        characters[0] = ' ';
        return 1;
    }
    return shape.isKnown && (isDrawing || glyph != 0) ? writePair(shape, characters) : 0;
}

int UnknownGlyphs::readCode(unsigned code, char32_t *characters) const
{
    Shape shape;
    const char *name = fz_font_name(context, description->font);
    shape.add(name, std::strlen(name));
    shape.add(&code, sizeof code);
    return writePair(shape, characters);
}

bool hasUnknownLetters(std::string_view text)
{
    // The planes 15 and 16 begin with the bytes F3 B0 and F4 80.
    const auto isHigh = [](char c) { return static_cast<unsigned char>(c) >= 0xF3; };
    for (auto c = std::find_if(text.begin(), text.end(), isHigh); c != text.end();
         c = std::find_if(c + 1, text.end(), isHigh)) {
        const bool isLast = c + 1 == text.end();
        const bool isPlane15 = !isLast && static_cast<unsigned char>(c[1]) >= 0xB0;
        if (static_cast<unsigned char>(*c) == 0xF4 || isPlane15)
            return true;
    }
    return false;
}

} // namespace pdf
