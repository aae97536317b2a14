// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <qpdf/QPDF.hh>
#include <string>
#include <string_view>

namespace pdf {

/// The file with a table of offsets and a trailer behind it that qpdf can open, made from what
/// looks like objects in it: a last resort for files whose own tables and trailers are lost. Empty
/// when there are no objects, or when they are encrypted and what they were encrypted with may be
/// lost.
[[nodiscard]] std::string salvagedFile(std::string_view bytes);

/// Makes the objects inside object streams, which salvagedFile() does not see, known to the opened
/// file, and the last catalog with pages its root. Without one the root stays empty.
void findLostObjects(QPDF &salvaged);

} // namespace pdf
