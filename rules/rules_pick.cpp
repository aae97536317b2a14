// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/fragmentboxes.h"
#include "rules/pagebutton.h"
#include "rules/rules.h"
#include "split/plaintext.h"
#include "ui_rules.h"

#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QToolTip>

#include <algorithm>

namespace {

// The stray brace ends a rule that Qt begins by itself for a sheet without one.
const QString boxStyle =
    QStringLiteral("border:2px dotted green;} QPushButton:Pressed{border:2px dotted red;");

/// Wider only where the desktop's font needs it.
constexpr QSize ruleButtonSize(141, 28);

} // namespace

void Rules::drawlabels()
{
    // Buttons that appear one by one in a visible parent each cost a round of layout and repaint. A
    // page of 2,000 fragments took 0.2 to 0.5 s that way, and takes 0.2 s this way, half of it for
    // the style sheets.
    pageLabel->hide();
    labelButtons.clear();
    labelButtons.reserve(subtexts.size());
    for (const Subtext &fragment : std::as_const(subtexts)) {
        auto *box = new PageButton(pageLabel);
        box->setGeometry(boxOf(fragment, zoom));
        box->setFlat(true);
        box->setAutoDefault(false);
        box->setStyleSheet(boxStyle);
        box->setAccessibleName(withoutControlCharacters(fragment.text));
        box->installEventFilter(this);
        box->show();
        connect(box, &PageButton::clicked, this, &Rules::textmessagebox);
        labelButtons.append(box);
    }
    pageLabel->show();
}

void Rules::makeRuleButton()
{
    delete ruleButton;
    ruleButton = new PageButton(pageLabel);
    ruleButton->setAutoDefault(false);
    ruleButton->installEventFilter(this);
    ruleButton->hide();
    connect(ruleButton, &PageButton::clicked, this, &Rules::addtorules);
}

void Rules::textmessagebox()
{
    const auto *pressed = qobject_cast<PageButton *>(sender());
    if (pressed && !pressed->isMouseClick()) {
        pickPressedBox(pressed);
        return;
    }
    QList<QRect> boxes;
    boxes.reserve(labelButtons.size());
    for (const QPushButton *box : std::as_const(labelButtons))
        boxes.append(box->geometry());
    const QPoint cursor = QCursor::pos();
    pickFragment(boxAt(boxes, pageLabel->mapFromGlobal(cursor)), cursor);
}

/// Without a box under the cursor, which can leave the box between press and release, the first
/// fragment is picked.
void Rules::pickFragment(qsizetype index, QPoint tipPosition)
{
    currentRule = subtexts.value(std::max<qsizetype>(index, 0));
    QToolTip::showText(tipPosition, tr("Position\n") + tr(" X- ") +
                                        QString::number(currentRule.left) + tr(" Y- ") +
                                        QString::number(currentRule.top));
    showRuleButton(index < 0 ? QPoint() : besideBox(labelButtons.at(index)->geometry()));
}

void Rules::showRuleButton(QPoint position)
{
    if (!ruleButton)
        return;
    ruleButton->setText(tr("Make it be the rule"));
    const QRect place(position, ruleButtonSize.expandedTo(ruleButton->sizeHint()));
    ruleButton->setGeometry(place);
    ruleButton->raise();
    ruleButton->show();
    // Beside a box at the edge of the page there may be no page left to stand on. The room given
    // here stays until the page is shown anew: taking it back would move a page that is scrolled
    // to it.
    const QSize room(place.x() + place.width(), place.y() + place.height());
    pageLabel->setMinimumSize(
        pageLabel->minimumSize().expandedTo(room).boundedTo({QWIDGETSIZE_MAX, QWIDGETSIZE_MAX}));
    scrollArea->ensureWidgetVisible(ruleButton, 0, 0);
}

/// Hidden with the focus, the button would hand it to the first box, and the page would be scrolled
/// there.
void Rules::hideRuleButton()
{
    if (!ruleButton)
        return;
    if (ruleButton->hasFocus())
        scrollArea->setFocus();
    ruleButton->hide();
}

void Rules::addtorules()
{
    setSaveControlsEnabled(true);
    ui->lineEdit_rulebefore->setText(QStringLiteral("(%1 %2 %3 %4)=%5")
                                         .arg(currentRule.left)
                                         .arg(currentRule.top)
                                         .arg(currentRule.width)
                                         .arg(currentRule.height)
                                         .arg(withoutControlCharacters(currentRule.text)));
    hideRuleButton();
    ui->lineEdit_rule->setFocus();
    ui->lineEdit_rule->selectAll();
}

void Rules::mousePressEvent(QMouseEvent *)
{
    hideRuleButton();
}

void Rules::mouseMoveEvent(QMouseEvent *)
{
}

bool Rules::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    const auto *press = static_cast<QKeyEvent *>(event);
    const int key = press->key();
    if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter)
        return QDialog::eventFilter(watched, event);
    // A key that is held down must not run through pick, confirmation and save.
    if (!press->isAutoRepeat()) {
        if (watched == ruleButton)
            addtorules();
        else
            pickPressedBox(watched);
    }
    return true;
}

/// Here the box counts and not the mouse cursor, which may be anywhere.
void Rules::pickPressedBox(const QObject *box)
{
    const auto found = std::find(labelButtons.cbegin(), labelButtons.cend(), box);
    if (found == labelButtons.cend())
        return;
    pickFragment(found - labelButtons.cbegin(),
                 (*found)->mapToGlobal((*found)->rect().bottomLeft()));
    if (ruleButton)
        ruleButton->setFocus();
}
