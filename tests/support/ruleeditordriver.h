// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>
#include <QLabel>
#include <QList>
#include <QPushButton>

/// Uses a rule editor as a person does: by its widgets, with the mouse cursor where the click is.
class RuleEditorDriver
{
public:
    explicit RuleEditorDriver(QDialog &editor) : dialog(editor) {}

    template <typename Widget>
    [[nodiscard]] Widget *widget(const char *name) const
    {
        return dialog.findChild<Widget *>(QLatin1String(name));
    }

    /// Shows the page and holds the boxes.
    [[nodiscard]] QLabel *page() const;
    /// The boxes of the page, in the order of the layout.
    [[nodiscard]] QList<QPushButton *> boxes() const;
    /// The box over the fragment with this text, or null.
    [[nodiscard]] QPushButton *box(const QString &text) const;
    /// The button beside the picked box, or null when it is not offered.
    [[nodiscard]] QPushButton *confirmButton() const;
    /// Waits for the boxes of the page.
    [[nodiscard]] bool waitForBoxes() const;

    void click(const char *buttonName) const;
    /// Clicks into the page view; `place` in its pixels.
    void clickAt(QPoint place) const;
    /// What the editor shows as the rule after a click on a box and on the button beside it; empty
    /// when there was no such button.
    [[nodiscard]] QString makeRuleAt(QPoint place) const;
    void typeName(const QString &name) const;

private:
    QDialog &dialog;
};
