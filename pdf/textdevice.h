// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/glyphcollector.h"

#include <mupdf/fitz.h>

namespace pdf {

/// A MuPDF device that hands every glyph of a page to a collector, whatever it is drawn with:
/// filled, stroked, used for clipping, or invisible as in the text layer of a scan.
///
/// Throws MuPDF exceptions only: call it inside fz_try. The collector must outlive the device.
[[nodiscard]] fz_device *newTextDevice(fz_context *context, GlyphCollector *collector);

} // namespace pdf
