// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/pagelist.h"

namespace pdf {

/// Size of a page as a viewer shows it, in points (1/72 inch): crop box within the media box,
/// /Rotate and /UserUnit applied.
struct PageSize
{
    double width = 0;
    double height = 0;
};

/// US Letter where the page states no usable media box, as viewers assume.
[[nodiscard]] PageSize displayedPageSize(QPDF &pdf, const PageList &list, const PageEntry &entry);

} // namespace pdf
