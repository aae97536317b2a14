// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/editordriver.h"

#include <QLineEdit>
#include <QTest>
#include <QWindow>

QString EditorDriver::candidate() const
{
    return widget<QLineEdit>("lineEdit_rulebefore")->text();
}

QPushButton *EditorDriver::box(const QString &fragment) const
{
    for (QPushButton *button : boxes()) {
        if (button->accessibleName() == fragment)
            return button;
    }
    return nullptr;
}

bool EditorDriver::waitForBoxes() const
{
    constexpr int timeLimitMs = 30000;
    return QTest::qWaitFor([this] { return !boxes().isEmpty(); }, timeLimitMs);
}

void EditorDriver::click(const QByteArray &name) const
{
    QTest::mouseClick(widget<QPushButton>("pushButton_" + name), Qt::LeftButton);
}

void EditorDriver::clickAt(QPoint place, bool twice) const
{
    view()->ensureVisible(place.x(), place.y());
    QCursor::setPos(page()->mapToGlobal(place));
    // To the window, which finds the widget at this place itself.
    const auto click = [twice](auto &&...arguments) {
        twice ? QTest::mouseDClick(arguments...) : QTest::mouseClick(arguments...);
    };
    click(dialog.windowHandle(), Qt::LeftButton, Qt::KeyboardModifiers(),
          page()->mapTo(&dialog, place));
}

QString EditorDriver::makeRuleAt(QPoint place) const
{
    clickAt(place);
    const QPushButton *button = confirmButton();
    if (!button)
        return {};
    clickAt(button->geometry().center());
    return candidate();
}

void EditorDriver::typeName(const QString &name) const
{
    auto *edit = widget<QLineEdit>("lineEdit_rule");
    edit->clear();
    QTest::keyClicks(edit, name);
}

QList<QPushButton *> EditorDriver::buttons(bool areBoxes) const
{
    QList<QPushButton *> found;
    for (QPushButton *button : page()->findChildren<QPushButton *>()) {
        if (button->isFlat() == areBoxes && (areBoxes || button->isVisible()))
            found.append(button);
    }
    return found;
}
