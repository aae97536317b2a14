// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

/// Shows a frame around a control that does not show by itself that it has the keyboard focus: a
/// button filled by its icon, or an empty list. As long as the focus is moved with the mouse there
/// is no frame.
class FocusRing : public QWidget
{
    Q_OBJECT

public:
    /// Becomes a sibling of `control`, which must not change its parent afterwards.
    explicit FocusRing(QWidget *control);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void followFocus(Qt::FocusReason reason, bool hasFocus);
};
