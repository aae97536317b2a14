// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/mywebview.h"

#include <QWheelEvent>

void myWebview::setZoomFactor(float)
{
    refresh();
}

void myWebview::wheelEvent(QWheelEvent *event)
{
    factor = static_cast<float>(factor * (event->angleDelta().y() > 0 ? 1.1 : 0.9));
    refresh();
}

void myWebview::refresh()
{
    update();
    updateGeometry();
}
