// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/focusring.h"

#include <QFocusEvent>
#include <QPainter>

FocusRing::FocusRing(QWidget *control) : QWidget(control->parentWidget())
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    control->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut: {
        const auto *change = static_cast<QFocusEvent *>(event);
        followFocus(change->reason(), change->gotFocus());
        break;
    }
    default:
        break;
    }
    setGeometry(static_cast<QWidget *>(watched)->geometry());
    return QWidget::eventFilter(watched, event);
}

void FocusRing::followFocus(Qt::FocusReason reason, bool hasFocus)
{
    switch (reason) {
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
        return; // the control gets the focus back
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        setVisible(hasFocus);
        raise();
        return;
    default:
        hide();
    }
}

void FocusRing::paintEvent(QPaintEvent *)
{
    constexpr int widthPx = 2;
    QPainter painter(this);
    painter.setPen(QPen(palette().color(QPalette::Highlight), widthPx));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}
