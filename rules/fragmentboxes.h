// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "split/subtext.h"

#include <QList>
#include <QPoint>
#include <QRect>

/// Geometry of the boxes that the rule editor lays over a page. Fragments are in page pixels, boxes
/// in pixels of the page view; the zoom is the scale of the view against the page.

/// No box is larger or farther away than this, which is as far as widgets go.
constexpr int maxViewCoordinate = (1 << 24) - 1;

/// `length` at `zoom`: the product in single precision, cut down to a whole number and kept between
/// 0 and maxViewCoordinate.
[[nodiscard]] int scaledLength(int length, float zoom);

/// The box over `fragment` at `zoom`.
[[nodiscard]] QRect boxOf(const Subtext &fragment, float zoom);

/// The index of the last of `boxes` that `position` lies in, or -1. A box includes the row below
/// its bottom edge but not the column at its right edge: where two boxes touch vertically the
/// shared row belongs to the later one, and boxes that touch horizontally share nothing.
[[nodiscard]] qsizetype boxAt(const QList<QRect> &boxes, QPoint position);

/// The place just right of `box`, level with its top edge.
[[nodiscard]] QPoint besideBox(const QRect &box);
