// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <string_view>

namespace pdf {

/// To stand behind the bytes of a file: a stream that is cut off there ends there, where qpdf would
/// take it for empty, or for continued in what follows; and an object that ends with the file,
/// which qpdf would not read, does not.
inline constexpr const char *streamEnd = "\nendstream\nendobj\n";

/// What is to be appended to a file.
struct Appendix
{
    std::string bytes;
    bool isWholeTable = false; ///< see appendixFor()
};

/// What is to be appended to the file for qpdf: streamEnd, and a cross-reference stream (ISO
/// 32000-1, 7.5.8) that says the same as the file's last cross-reference table, with a pointer to
/// it. Without that stream when the file does not end with a table, or with one that is not exactly
/// as it should be.
///
/// qpdf reads such a stream five times as fast as the table, which otherwise is most of what taking
/// a few pages out of a large file costs.
///
/// A table in very many sections becomes one without sections, a whole table: MuPDF takes time with
/// the square of their number, hours for a table in which each entry has a section of its own.
[[nodiscard]] Appendix appendixFor(std::string_view file);

} // namespace pdf
