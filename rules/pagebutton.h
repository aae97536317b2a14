// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPushButton>

/// A button that stands on a page.
///
/// Such buttons appear and disappear under the mouse. The second press of a double click is
/// therefore no press of its own: it would hit whatever the first click has put or left there.
class PageButton : public QPushButton
{
    Q_OBJECT

public:
    using QPushButton::QPushButton;

    /// Whether the click that is being handled was made with the mouse, so that its place counts,
    /// and not with click() or by assistive technology.
    [[nodiscard]] bool isMouseClick() const { return isReleasing; }

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    bool isReleasing = false;
};
