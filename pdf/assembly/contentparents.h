// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <qpdf/QPDFObjectHandle.hh>

namespace pdf {

/// What the parent tree of a structure tree should say (ISO 32000-1, 14.7.4.4), by the numbers in
/// /StructParents and /StructParent: found by a walk through the whole tree, for files without one.
[[nodiscard]] std::map<long long, QPDFObjectHandle> contentParents(QPDFObjectHandle structureRoot);

} // namespace pdf
