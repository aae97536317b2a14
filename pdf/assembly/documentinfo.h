// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/document.h"

#include <string>

namespace pdf {

/// The text of an information file: "NumberOfPages: 12", then further "Key: value" lines, each in
/// one line of valid UTF-8. Keys: NumberOfPages, PDFVersion, Encrypted (yes or no), Title, Author
/// (both only when the document states them), PageSize (of page 1, displayed, in points).
[[nodiscard]] std::string documentInfo(Document &document);

/// The text of an information file for an input that cannot be read: the page count stays without
/// digits, so that a reader that looks for them finds none, and a line "Error: cause" follows.
[[nodiscard]] std::string failureInfo(const std::string &cause);

} // namespace pdf
