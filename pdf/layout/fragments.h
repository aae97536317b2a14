// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/fragment.h"
#include "pdf/layout/glyphrun.h"

#include <vector>

namespace pdf {

/// The fragments of a page from its runs of glyphs, in reading order: by top, then by left.
///
/// Runs on one baseline are joined, in whatever order they were drawn, unless there is a gap of
/// more than 0.7 em between them, 0.95 em behind a sentence, 1.05 em where a blank is shown, each
/// widened by twice the letter spacing; raised and lowered small letters go into the line that they
/// stand in. What is drawn twice in nearly the same place is taken once. Marks go to the letters
/// that they stand on.
[[nodiscard]] std::vector<Fragment> makeFragments(std::vector<GlyphRun> runs,
                                                  const std::vector<GlyphRun> &marks);

/// A coordinate as a whole number of pixels, at least 1, because readers of layouts take 0 and
/// less for "no value".
///
/// The boundary between two numbers lies at .44 of a pixel. Producers place text at multiples of
/// 1/10, 1/4 or 1/2 point, which are multiples of 1/15, 1/3 or 2/3 pixel, from the edges of pages
/// whose height is a whole number of points or 841.89 points; .44 is at least 0.013 pixels away
/// from all of these, where .5 is one of them. So noise does not move a place that a producer
/// means to be the same.
[[nodiscard]] int layoutCoordinate(double pixels);

} // namespace pdf
