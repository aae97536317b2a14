// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/pagezoom.h"

#include "rules/fragmentboxes.h"

#include <algorithm>
#include <limits>

QSize sizeAtZoom(QSize image, float zoom)
{
    return {scaledLength(image.width(), zoom), scaledLength(image.height(), zoom)};
}

PageFit pageFit(QSize image, float zoom, qreal devicePixelRatio)
{
    constexpr qreal maxPixels = 80e6; // an A4 page enlarged ten times
    const QSize size = sizeAtZoom(image, zoom);
    if (size.isEmpty())
        return PageFit::TooSmall;
    const QSizeF pixels = QSizeF(size) * devicePixelRatio;
    return pixels.width() * pixels.height() > maxPixels ? PageFit::TooLarge : PageFit::Shown;
}

float boundedZoom(float zoom)
{
    constexpr float least = std::numeric_limits<float>::min();
    return std::clamp(zoom, least, 1 / least);
}
