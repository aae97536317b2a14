// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/textdevice.h"

#include "pdf/characters.h"

#include <exception>

namespace pdf {

namespace {

struct TextDevice
{
    fz_device base;
    GlyphCollector *collector;
};

/// Keeps C++ exceptions from passing through MuPDF's frames.
bool addGlyph(GlyphCollector *collector, const TextAxes &axes, const ShownGlyph &glyph) noexcept
{
    try {
        collector->add(axes, glyph);
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

TextAxes axesOf(const fz_text_span *span, fz_matrix transform)
{
    const fz_matrix matrix = fz_concat(span->trm, transform);
    const bool isVertical = span->wmode != 0;
    return isVertical ? TextAxes(-matrix.c, -matrix.d, matrix.c, matrix.d, true)
                      : TextAxes(matrix.a, matrix.b, matrix.c, matrix.d, false);
}

/// Way along the line from the pen to the middle of the drawn shape.
double wayToMiddle(fz_context *context, const fz_text_span *span, const fz_text_item &item,
                   fz_matrix transform, const TextAxes &axes)
{
    fz_matrix matrix = span->trm;
    matrix.e = item.x;
    matrix.f = item.y;
    matrix = fz_concat(matrix, transform);
    const fz_rect box = fz_bound_glyph(context, span->font, item.gid, matrix);
    if (fz_is_empty_rect(box))
        return 0;
    const float x = (box.x0 + box.x1) / 2 - matrix.e;
    const float y = (box.y0 + box.y1) / 2 - matrix.f;
    return static_cast<double>(x) * axes.line.directionX +
           static_cast<double>(y) * axes.line.directionY;
}

void addText(fz_context *context, fz_device *device, const fz_text *text, fz_matrix transform)
{
    GlyphCollector *collector = reinterpret_cast<TextDevice *>(device)->collector;
    for (const fz_text_span *span = text->head; span != nullptr; span = span->next) {
        const TextAxes axes = axesOf(span, transform);
        for (int i = 0; i < span->len; ++i) {
            const fz_text_item &item = span->items[i];
            // A second glyph for the same character (an accent set apart) shows nothing new.
            if (item.ucs < 0)
                continue;
            ShownGlyph glyph;
            const fz_point pen = fz_transform_point_xy(item.x, item.y, transform);
            glyph.x = pen.x;
            glyph.y = pen.y;
            glyph.character = static_cast<char32_t>(item.ucs);
            glyph.isContinuation = item.gid < 0;
            if (!glyph.isContinuation)
                glyph.advance = static_cast<double>(
                    fz_advance_glyph(context, span->font, item.gid, axes.line.isVertical));
            if (!glyph.isContinuation && (glyph.advance == 0 || isMark(glyph.character)))
                glyph.toMiddle = wayToMiddle(context, span, item, transform, axes);
            if (!addGlyph(collector, axes, glyph))
                fz_throw(context, FZ_ERROR_MEMORY, "out of memory");
        }
    }
}

void fillText(fz_context *context, fz_device *device, const fz_text *text, fz_matrix transform,
              fz_colorspace * /*space*/, const float * /*color*/, float /*alpha*/,
              fz_color_params /*parameters*/)
{
    addText(context, device, text, transform);
}

void strokeText(fz_context *context, fz_device *device, const fz_text *text,
                const fz_stroke_state * /*stroke*/, fz_matrix transform, fz_colorspace * /*space*/,
                const float * /*color*/, float /*alpha*/, fz_color_params /*parameters*/)
{
    addText(context, device, text, transform);
}

void clipText(fz_context *context, fz_device *device, const fz_text *text, fz_matrix transform,
              fz_rect /*scissor*/)
{
    addText(context, device, text, transform);
}

void clipStrokeText(fz_context *context, fz_device *device, const fz_text *text,
                    const fz_stroke_state * /*stroke*/, fz_matrix transform, fz_rect /*scissor*/)
{
    addText(context, device, text, transform);
}

} // namespace

fz_device *newTextDevice(fz_context *context, GlyphCollector *collector)
{
    auto *device = reinterpret_cast<TextDevice *>(
        fz_new_device_of_size(context, static_cast<int>(sizeof(TextDevice))));
    device->collector = collector;
    device->base.fill_text = fillText;
    device->base.stroke_text = strokeText;
    device->base.clip_text = clipText;
    device->base.clip_stroke_text = clipStrokeText;
    device->base.ignore_text = addText;
    return &device->base;
}

} // namespace pdf
