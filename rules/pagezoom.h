// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSize>

/// How a page is shown at a zoom, which is the scale of the view against the page image.

enum class PageFit { Shown, TooSmall, TooLarge };

/// The size of a page image of `image` pixels at `zoom`, in device-independent pixels.
[[nodiscard]] QSize sizeAtZoom(QSize image, float zoom);

/// Whether a page image of `image` pixels can be shown at `zoom` on a screen with
/// `devicePixelRatio`: it is too small when nothing is left of it, and too large when it would take
/// more than 320 MB.
[[nodiscard]] PageFit pageFit(QSize image, float zoom, qreal devicePixelRatio);

/// `zoom`, kept where steps of a fourth up and a fifth down still change it. That leaves room for
/// almost 400 steps each way, far more than any page is visible through; beyond it a zoom would
/// become 0 or infinite and never come back.
[[nodiscard]] float boundedZoom(float zoom);
