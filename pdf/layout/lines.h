// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/glyphrun.h"

#include <cstddef>
#include <vector>

namespace pdf {

/// A number that lines of one direction and way of writing share.
[[nodiscard]] int directionKey(const Baseline &line);

/// The runs of a page, those of one line behind each other by their starts, the lines of one
/// direction by their distance from the origin.
struct Lines
{
    std::vector<GlyphRun> runs;
    std::vector<std::size_t> begins; ///< the first run of each line, and the end of the last one
};

/// Joins the runs of each line that belong to one fragment, wherever they were drawn in between.
/// What is drawn twice in nearly the same place is taken once.
[[nodiscard]] Lines joinLines(std::vector<GlyphRun> runs);

/// Whether next goes on where run ends, in the same fragment.
[[nodiscard]] bool isContinuedBy(const GlyphRun &run, const GlyphRun &next);

} // namespace pdf
