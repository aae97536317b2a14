// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/document.h"

#include <vector>

namespace pdf {

/// The dictionaries of resources, in order, that the pages with these indexes (from 0) refer to and
/// no other page and no node of the page tree does. Nothing of other pages should be in them, so
/// that contents need not be read for what of them is used, which is a third of the work of taking
/// many pages out. Found in the file's bytes: empty where these do not tell it for sure.
[[nodiscard]] std::vector<QPDFObjGen> ownResources(const Document &document,
                                                   const std::vector<int> &indexes);

} // namespace pdf
