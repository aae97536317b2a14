// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTextBrowser>

/// A page view that counts the zoom steps of the mouse wheel in a factor of its own but shows its
/// text unscaled. No window of the program creates one.
class myWebview : public QTextBrowser
{
    Q_OBJECT

public:
    using QTextBrowser::QTextBrowser;

    /// What the wheel has made of the factor, which begins at 1.
    [[nodiscard]] float zoomFactor() const { return factor; }

    /// Repaints and lays out again; the argument changes nothing.
    void setZoomFactor(float);

protected:
    void wheelEvent(QWheelEvent *event) override;

private:
    void refresh();

    float factor = 1.0F;
};
