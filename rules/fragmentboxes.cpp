// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/fragmentboxes.h"

#include <algorithm>

int scaledLength(int length, float zoom)
{
    const float product = static_cast<float>(length) * zoom;
    if (!(product > 0.0F))
        return 0;
    return static_cast<int>(std::min(product, static_cast<float>(maxViewCoordinate)));
}

QRect boxOf(const Subtext &fragment, float zoom)
{
    return {scaledLength(fragment.left, zoom), scaledLength(fragment.top, zoom),
            scaledLength(fragment.width, zoom), scaledLength(fragment.height, zoom)};
}

qsizetype boxAt(const QList<QRect> &boxes, QPoint position)
{
    const auto contains = [position](const QRect &box) {
        return position.x() >= box.x() && position.x() < box.x() + box.width() &&
               position.y() >= box.y() && position.y() <= box.y() + box.height();
    };
    const auto last = std::find_if(boxes.crbegin(), boxes.crend(), contains);
    return boxes.crend() - last - 1;
}

QPoint besideBox(const QRect &box)
{
    return {box.x() + box.width(), box.y()};
}
