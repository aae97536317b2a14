// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace pdf {

/// The coordinates of layouts and page images, everywhere in this system: pixels at 96 dpi of the
/// page as a viewer shows it, that is the crop box with /Rotate and /UserUnit applied. The origin
/// is the top left corner, x grows to the right, y grows downwards. An A4 page is 793.7 x 1122.5
/// pixels; a point given in PDF units lies at 96/72 of its distance from that corner.
constexpr double layoutDpi = 96;

/// A piece of text of one line, as one would read it out: its words with single blanks between
/// them, none at the ends, no control characters (UTF-8, NFC).
///
/// The box follows from the pen's way and the font size and never from the shapes of the letters:
/// for upright text it begins at the pen position of the first visible glyph, ends behind the last
/// one's advance, reaches 0.8 em above the baseline and is 1 em high, the em being that of the
/// largest letters of the first word. Text that runs in another direction has the upright box
/// around such a box. Letters without characters are pairs of private ones (unknownglyphs.h).
struct Fragment
{
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    std::string text;
};

} // namespace pdf
