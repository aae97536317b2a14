// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/ruleeditordriver.h"

#include <QCursor>
#include <QLineEdit>
#include <QScrollArea>
#include <QTest>
#include <QWindow>

#include <algorithm>

QLabel *RuleEditorDriver::page() const
{
    return qobject_cast<QLabel *>(dialog.findChild<QScrollArea *>()->widget());
}

QList<QPushButton *> RuleEditorDriver::boxes() const
{
    QList<QPushButton *> found;
    for (QPushButton *button : page()->findChildren<QPushButton *>()) {
        if (button->isFlat())
            found.append(button);
    }
    return found;
}

QPushButton *RuleEditorDriver::box(const QString &text) const
{
    const QList<QPushButton *> all = boxes();
    const auto found = std::find_if(all.cbegin(), all.cend(), [&text](const QPushButton *button) {
        return button->accessibleName() == text;
    });
    return found == all.cend() ? nullptr : *found;
}

QPushButton *RuleEditorDriver::confirmButton() const
{
    for (QPushButton *button : page()->findChildren<QPushButton *>()) {
        if (!button->isFlat() && button->isVisible())
            return button;
    }
    return nullptr;
}

bool RuleEditorDriver::waitForBoxes() const
{
    return QTest::qWaitFor([this] { return !boxes().isEmpty(); }, 30000);
}

void RuleEditorDriver::click(const char *buttonName) const
{
    QTest::mouseClick(widget<QPushButton>(buttonName), Qt::LeftButton);
}

void RuleEditorDriver::clickAt(QPoint place) const
{
    dialog.findChild<QScrollArea *>()->ensureVisible(place.x(), place.y());
    QCursor::setPos(page()->mapToGlobal(place));
    // To the window, which finds the widget at this place itself.
    QTest::mouseClick(dialog.windowHandle(), Qt::LeftButton, {}, page()->mapTo(&dialog, place));
}

QString RuleEditorDriver::makeRuleAt(QPoint place) const
{
    clickAt(place);
    const QPushButton *button = confirmButton();
    if (!button)
        return {};
    clickAt(button->geometry().center());
    return widget<QLineEdit>("lineEdit_rulebefore")->text();
}

void RuleEditorDriver::typeName(const QString &name) const
{
    auto *edit = widget<QLineEdit>("lineEdit_rule");
    edit->clear();
    QTest::keyClicks(edit, name);
}
