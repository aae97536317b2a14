// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/pagebutton.h"

#include <QMouseEvent>
#include <QScopedValueRollback>

void PageButton::mouseReleaseEvent(QMouseEvent *event)
{
    const QScopedValueRollback<bool> releasing(isReleasing, true);
    QPushButton::mouseReleaseEvent(event);
}

void PageButton::mouseDoubleClickEvent(QMouseEvent *event)
{
    event->accept();
}
