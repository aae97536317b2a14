// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/objectcopier.h"

#include <vector>

namespace pdf {

/// The value of the catalog's /PageLabels for the target (ISO 32000-1, 12.4.2), in which each page
/// keeps the label it has in the source: page "iv" stays "iv". indexes are the copied pages (from
/// 0) in their new order. Null when the source has no labels.
[[nodiscard]] QPDFObjectHandle copyPageLabels(ObjectCopier &copier,
                                              const std::vector<int> &indexes);

} // namespace pdf
