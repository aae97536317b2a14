// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/objectcopier.h"

namespace pdf {

/// The value of the catalog's /OCProperties for the target (ISO 32000-1, 8.11.4): the layers that
/// copied contents belong to, in the state they have in the source, so that what was hidden stays
/// hidden. Null when no copied contents belong to a layer. To be called when all contents are
/// copied.
[[nodiscard]] QPDFObjectHandle copyLayerProperties(ObjectCopier &copier);

} // namespace pdf
