// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/fragment.h"

#include <string>
#include <vector>

namespace pdf {

/// The text of a page layout file: one line for each fragment,
/// `<span style="left:64;top:118;width:93;height:15">INV-0042</span>`, nothing else that could be
/// read as one, and nothing at all for a page without text. The first line begins with a meta
/// element that states UTF-8; there is no document type, because browsers read lengths without a
/// unit only without one.
[[nodiscard]] std::string layoutFileText(const std::vector<Fragment> &fragments);

/// The text with "<" and ">" as entities, and "&" as one only where a browser would read an entity
/// from it: readers of layouts use the text as it stands, in file names, so "AT&T" stays "AT&T".
[[nodiscard]] std::string markupText(const std::string &text);

} // namespace pdf
