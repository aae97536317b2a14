// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/objectcopier.h"

#include <map>

namespace pdf {

/// What the parent tree of a structure tree should say (ISO 32000-1, 14.7.4.4) of what the copier
/// has copied, by the numbers in /StructParents and /StructParent: found by a walk through the
/// whole structure tree, for files without a parent tree.
[[nodiscard]] std::map<long long, QPDFObjectHandle>
contentParents(const ObjectCopier &copier, const QPDFObjectHandle &structureRoot);

} // namespace pdf
