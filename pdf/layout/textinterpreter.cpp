// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/textinterpreter.h"

#include "pdf/layout/characters.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace pdf {

TextInterpreter::TextInterpreter(fz_context *usedContext, FontStore *usedFonts,
                                 GlyphCollector *usedCollector, const Matrix &toPixels)
    : context(usedContext), fonts(usedFonts), collector(usedCollector), states(2)
{
    states[0].toPixels = states[1].toPixels = toPixels;
}

void TextInterpreter::startOver()
{
    lowestMarked = 0;
    while (markedDepth > 0)
        endMarked();
    lowestState = 2;
    states.resize(lowestState);
    states[1] = states[0];
}

void TextInterpreter::setFont(pdf_font_desc *font, double size)
{
    text().font = fonts->glyphs(font);
    text().size = size;
}

void TextInterpreter::save()
{
    constexpr std::size_t mostStates = 100000;
    if (states.size() > mostStates)
        throw std::bad_alloc();
    states.push_back(states.back());
}

void TextInterpreter::restore()
{
    if (states.size() > lowestState)
        states.pop_back();
}

void TextInterpreter::transform(const Matrix &matrix)
{
    Matrix &toPixels = states.back().toPixels;
    toPixels = matrix.followedBy(toPixels);
}

void TextInterpreter::moveLine(double x, double y)
{
    lineMatrix.moveBy(x, y);
    textMatrix = lineMatrix;
}

void TextInterpreter::moveBack(double thousandths)
{
    const TextState &state = text();
    movePen(-thousandths / 1000 * state.size * state.scaleAlong());
}

void TextInterpreter::movePen(double way)
{
    const bool isVertical = text().isVertical();
    textMatrix.moveBy(isVertical ? 0 : way, isVertical ? way : 0);
}

void TextInterpreter::show(std::string_view string, bool isHidden)
{
    const TextState &state = text();
    if (state.font == nullptr)
        return;
    const Matrix textToPixels = textMatrix.followedBy(states.back().toPixels);
    const Matrix font = {state.size * state.horizontalScale, 0, 0, state.size, 0, state.rise};
    const Matrix start = font.followedBy(textToPixels);
    const bool isVertical = state.isVertical();
    const double em = state.font->emSize();
    const double upX = start.c * em;
    const double upY = start.d * em;
    TextAxes axes = isVertical ? TextAxes(-upX, -upY, upX, upY, true)
                               : TextAxes(start.a * em, start.b * em, upX, upY, false);
    axes.line.boxSize = axes.line.size * state.font->boxSize() / em;
    axes.clip = states.back().clip;
    const double stepX = isVertical ? textToPixels.c : textToPixels.a;
    const double stepY = isVertical ? textToPixels.d : textToPixels.b;
    const double scaleAlong = state.scaleAlong();
    collector->beginString();
    double way = 0;
    Matrix place = start;
    while (!string.empty()) {
        const FontGlyph &glyph = state.font->first(string);
        if (glyph.isShown) {
            place.e = start.e + way * stepX;
            place.f = start.f + way * stepY;
            if (!isHidden)
                showGlyph(glyph, place, axes);
            way += (glyph.penStep * state.size + state.characterSpacing) * scaleAlong;
        }
        // ISO 32000-1, 9.3.3: word spacing goes with the single byte 32, whatever it shows.
        if (glyph.code == ' ' && glyph.codeLength == 1)
            way += state.wordSpacing * scaleAlong;
        string.remove_prefix(std::min<std::size_t>(glyph.codeLength, string.size()));
    }
    movePen(way);
}

void TextInterpreter::showGlyph(const FontGlyph &glyph, Matrix place, const TextAxes &axes)
{
    if (axes.line.isVertical)
        place.moveBy(-glyph.originX, -glyph.originY);
    ShownGlyph shown;
    shown.x = place.e;
    shown.y = place.f;
    shown.advance = glyph.advance;
    shown.movesPen = glyph.penStep != 0;
    shown.character = glyph.characters[0];
    int next = 1;
    if (glyph.count > 1 && isBlank(shown.character)) {
        ShownGlyph blank = shown;
        blank.advance = 0;
        blank.movesPen = false;
        collector->add(axes, blank);
        shown.character = glyph.characters[next++];
    }
    if (glyph.advance == 0 || isMark(shown.character))
        shown.toMiddle = wayToMiddle(glyph, place, axes);
    collector->add(axes, shown);
    shown.isContinuation = true;
    shown.movesPen = false;
    for (; next < glyph.count; ++next) {
        shown.character = glyph.characters[next];
        collector->add(axes, shown);
    }
}

/// Way along the line from the pen to the middle of the drawn shape.
double TextInterpreter::wayToMiddle(const FontGlyph &glyph, const Matrix &place,
                                    const TextAxes &axes) const
{
    const fz_rect box = fz_bound_glyph(
        context, text().font->font()->font, glyph.glyph,
        fz_make_matrix(static_cast<float>(place.a), static_cast<float>(place.b),
                       static_cast<float>(place.c), static_cast<float>(place.d), 0, 0));
    if (fz_is_empty_rect(box))
        return 0;
    return static_cast<double>(box.x0 + box.x1) / 2 * axes.line.directionX +
           static_cast<double>(box.y0 + box.y1) / 2 * axes.line.directionY;
}

TextInterpreter::Surroundings TextInterpreter::enterForm(const Matrix &matrix, const fz_rect &box)
{
    const Surroundings around = {lowestState, lowestMarked, textMatrix, lineMatrix};
    save();
    lowestState = states.size();
    lowestMarked = markedDepth;
    transform(matrix);
    if (!fz_is_empty_rect(box))
        clip(box);
    return around;
}

/// Of a turned box the upright one around it counts.
void TextInterpreter::clip(const fz_rect &box)
{
    const Matrix &toPixels = states.back().toPixels;
    ClipBox seen = {HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (const float x : {box.x0, box.x1}) {
        for (const float y : {box.y0, box.y1}) {
            Matrix corner = toPixels;
            corner.moveBy(static_cast<double>(x), static_cast<double>(y));
            seen.left = std::min(seen.left, corner.e);
            seen.right = std::max(seen.right, corner.e);
            seen.top = std::min(seen.top, corner.f);
            seen.bottom = std::max(seen.bottom, corner.f);
        }
    }
    ClipBox &all = states.back().clip;
    all.left = std::max(all.left, seen.left);
    all.right = std::min(all.right, seen.right);
    all.top = std::max(all.top, seen.top);
    all.bottom = std::min(all.bottom, seen.bottom);
}

void TextInterpreter::leaveForm(const Surroundings &around)
{
    while (markedDepth > lowestMarked)
        endMarked();
    lowestMarked = around.lowestMarked;
    states.resize(lowestState - 1);
    lowestState = around.lowestState;
    textMatrix = around.textMatrix;
    lineMatrix = around.lineMatrix;
}

void TextInterpreter::beginReplaced(std::u32string text)
{
    beginMarked();
    if (replacedDepth != 0)
        return;
    replacedDepth = markedDepth;
    collector->beginReplacement(std::move(text));
}

void TextInterpreter::endMarked()
{
    if (markedDepth == lowestMarked)
        return;
    const bool isReplaced = markedDepth-- == replacedDepth;
    if (!isReplaced)
        return;
    replacedDepth = 0;
    collector->endReplacement();
}

} // namespace pdf
