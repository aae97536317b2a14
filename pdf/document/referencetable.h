// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <string_view>

namespace pdf {

/// What could be appended to the file to give it a cross-reference stream (ISO 32000-1, 7.5.8) that
/// says the same as its last cross-reference table, with a pointer to it. Empty when the file does
/// not end with a table, or with one that is not exactly as it should be.
///
/// qpdf reads such a stream five times as fast as the table, which otherwise is most of what taking
/// a few pages out of a large file costs.
[[nodiscard]] std::string referenceStreamFor(std::string_view file);

} // namespace pdf
