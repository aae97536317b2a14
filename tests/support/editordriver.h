// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

/// Uses a rule editor as a person does: by its widgets, with the mouse cursor where the click is.
class EditorDriver
{
public:
    /// The editor must outlive the driver.
    explicit EditorDriver(QDialog &editor) : dialog(editor) {}

    template <typename Widget>
    [[nodiscard]] Widget *widget(const char *name) const
    {
        return dialog.findChild<Widget *>(QLatin1String(name));
    }
    /// The rule as it would be saved.
    [[nodiscard]] QString candidate() const;
    [[nodiscard]] QScrollArea *view() const { return dialog.findChild<QScrollArea *>(); }
    /// Shows the page and holds the boxes.
    [[nodiscard]] QLabel *page() const { return qobject_cast<QLabel *>(view()->widget()); }
    [[nodiscard]] QImage image() const { return page()->pixmap(Qt::ReturnByValue).toImage(); }
    /// The boxes of the page, in the order of the layout.
    [[nodiscard]] QList<QPushButton *> boxes() const { return buttons(true); }
    /// The box over the fragment with this text, or null.
    [[nodiscard]] QPushButton *box(const QString &fragment) const;
    /// The button beside the picked box, or null when it is not offered.
    [[nodiscard]] QPushButton *confirmButton() const { return buttons(false).value(0); }
    [[nodiscard]] bool waitForBoxes() const;
    void click(const QByteArray &name) const;
    /// Clicks, or double-clicks, into the page view; `place` in its pixels.
    void clickAt(QPoint place, bool twice = false) const;
    /// What the editor shows as the rule after a click on a box and on the button beside it; empty
    /// when there was no such button.
    [[nodiscard]] QString makeRuleAt(QPoint place) const;
    void typeName(const QString &name) const;

private:
    [[nodiscard]] QList<QPushButton *> buttons(bool areBoxes) const;

    QDialog &dialog;
};
