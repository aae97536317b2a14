// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/destinations.h"
#include "pdf/assembly/objectcopier.h"

namespace pdf {

/// Copies what the catalog says about the document as a whole (ISO 32000-1, 7.7.2): language, view,
/// metadata, output intents, document information.
void copyDocumentEntries(ObjectCopier &copier, DestinationCopier &destinations);

/// Puts the destinations that are used by name, and with a form the scripts its fields call, into
/// the target's catalog. To be called when everything that can use a name is copied.
void copyNames(ObjectCopier &copier, const DestinationCopier &destinations);

} // namespace pdf
