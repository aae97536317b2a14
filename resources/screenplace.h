// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QRect>

class QWidget;

/// Where a window of `size` goes on a screen with the geometry `screen`, of which panels leave
/// `available`: to the centre of the screen, as far as it is not under a panel there. A window that
/// would be larger than what is available, title bar included, is made smaller. All in
/// device-independent pixels.
[[nodiscard]] QRect placeOnScreen(QSize size, const QRect &screen, const QRect &available);

/// Puts a window that has not been shown yet there, on the first screen.
void placeOnFirstScreen(QWidget *window);
