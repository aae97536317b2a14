// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <mupdf/fitz.h>
#include <string_view>

namespace pdf {

/// Lets MuPDF read the second part as if it were appended to the first one. Both must outlive the
/// stream, which the caller drops. Throws MuPDF exceptions only.
[[nodiscard]] fz_stream *openTwoParts(fz_context *context, std::string_view first,
                                      std::string_view second);

} // namespace pdf
