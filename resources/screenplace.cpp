// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "resources/screenplace.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

QRect placeOnScreen(QSize size, const QRect &screen, const QRect &available)
{
    // How high it is, the desktop tells only once the window is shown. Common ones have 24 to 37.
    constexpr int titleBarPx = 37;
    const QRect room = available.adjusted(0, 0, 0, -titleBarPx);
    QRect place(QPoint(), size.boundedTo(room.size()));
    place.moveTopLeft(screen.center() - place.center());
    place.moveRight(qMin(place.right(), room.right()));
    place.moveBottom(qMin(place.bottom(), room.bottom()));
    place.moveLeft(qMax(place.left(), room.left()));
    place.moveTop(qMax(place.top(), room.top()));
    return place;
}

void placeOnFirstScreen(QWidget *window)
{
    const QScreen *screen = QGuiApplication::screens().constFirst();
    const QRect place =
        placeOnScreen(window->size(), screen->geometry(), screen->availableGeometry());
    window->resize(place.size());
    window->move(place.topLeft());
}
