// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// One positioned text fragment of a page.
///
/// The box is given in page pixels: the displayed page (crop box and rotation applied) at 96 dots
/// per inch, origin at the top left corner, y growing downwards.
struct Subtext
{
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    QString text; ///< as the layout file has it: entities stay as they are written
};
