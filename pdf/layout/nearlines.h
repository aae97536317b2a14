// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/lines.h"

namespace pdf {

/// Settles what stands closer to a line than lines stand to each other, and leaves the runs of the
/// page's fragments in the lines:
///
/// - A shadow, the same text once more a third of an em beside it at most, is left out.
/// - Raised and lowered small letters ("m2", "H2O", "1st", footnote marks) go into the line right
///   behind whose letter they stand. The line's own place, size and first letter stay what they
///   are, so a field that has such a letter on some pages only is found on all of them. What stands
///   before a line or a blank away from it, a label in small print above a field say, remains a
///   line of its own.
void joinNearLines(Lines &lines);

} // namespace pdf
