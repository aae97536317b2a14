// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/document.h"
#include "pdf/document/outputfile.h"

#include <functional>
#include <vector>

namespace pdf {

/// Writes a new PDF of the pages with these indexes (from 0), in this order, to output, which the
/// caller publishes. A repeated index gives a page of its own.
///
/// The new document holds the pages with the attributes they inherit, their annotations, the form
/// fields and layers they use, document information and metadata. Streams are copied as they are.
/// An encrypted input keeps its encryption and permissions.
/// Throws Error: Forbidden when the input's permissions do not allow it, InputUnreadable when
/// damage stands in the way, OutputUnwritable.
///
/// written is called when everything is written, before the memory of a large document is given
/// back: a process that has nothing else to do can end there.
void assemblePages(
    Document &document, const std::vector<int> &indexes, OutputFile &output,
    const std::function<void()> &written = [] {});

} // namespace pdf
