// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/glyphcollector.h"

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

namespace pdf {

/// Hands the glyphs of a page's contents, annotations and form fields to the collector, and the
/// text that marked content states for them (ISO 32000-1, 14.9.4). Images and shadings are not even
/// loaded, because they hold no text.
///
/// Throws MuPDF exceptions only: call it inside fz_try.
void collectPageText(fz_context *context, pdf_page *page, fz_matrix transform,
                     GlyphCollector *collector);

} // namespace pdf
