// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/process.h"

#include "mainwindow/focusring.h"
#include "mainwindow/progresspane.h"
#include "mainwindow/sortonclick.h"
#include "options/opdialog.h"
#include "resources/lightground.h"
#include "resources/screenplace.h"
#include "rules/rules.h"
#include "split/toolprocesses.h"
#include "ui_process.h"

#include <QAction>
#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QStyle>
#include <QTimer>

Process::Process(QWidget *parent)
    : QWidget(parent), ui(std::make_unique<Ui_process>()),
      optionsDialog(std::make_unique<OpDialog>()), tools(new ToolProcesses(this)),
      pageInfo(QCoreApplication::applicationDirPath())
{
    ui->setupUi(this);
    setGeometry(0, 0, 840, 490);
    placeOnFirstScreen(this);
    fileReader = new QNetworkAccessManager(this);
    ruleEditor = std::make_unique<Rules>();
    connectControls();
    ui->outputfolderEdit->setPalette(QPalette(Qt::white));
    fillRuleList();
    setabout();
    fitTexts();
    previewTimer = new QTimer(this);
    connect(previewTimer, &QTimer::timeout, this, &Process::dopreview);
    setUpTable();
    setUpBackground();
    setAcceptDrops(true);
    progress = new ProgressPane(ui->textEdit_process);
    for (QWidget *control : std::initializer_list<QWidget *>{
             ui->inputfiletableWidget, ui->outputButton, ui->textEdit_process})
        new FocusRing(control);
}

Process::~Process()
{
    // Now, while there is still a window for what they would call.
    tools->endAll();
    if (layoutReply) {
        layoutReply->disconnect(this);
        layoutReply->abort();
    }
}

void Process::connectControls()
{
    QTableWidget *table = ui->inputfiletableWidget;
    connect(ui->runButton, &QPushButton::clicked, this, &Process::convertbegin);
    connect(ui->pushButton_option, &QPushButton::clicked, this, &Process::enteroption);
    connect(ui->openfileButton, &QPushButton::clicked, this, &Process::setopenfile);
    connect(table, &QTableWidget::itemDoubleClicked, this, &Process::setopenselected);
    connect(ui->removeButton, &QPushButton::clicked, this, &Process::setremove);
    connect(ui->removeallButton, &QPushButton::clicked, this, &Process::setremoveall);
    connect(table, &QTableWidget::itemClicked, this, &Process::setpreview);
    connectPreview();
    connect(ui->outputButton, &QPushButton::clicked, this, &Process::setoutputfile);
    connect(ui->aboutButton, &QPushButton::clicked, this, &Process::setabout1);
    connect(ui->pushButton_up, &QPushButton::clicked, this, &Process::setrowup);
    connect(ui->pushButton_down, &QPushButton::clicked, this, &Process::setrowdown);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
}

void Process::setUpTable()
{
    QTableWidget *table = ui->inputfiletableWidget;
    table->horizontalHeader()->setStyleSheet(
        QStringLiteral("QHeaderView::section {background-color:CornflowerBlue;color: black;"
                       "padding-left: 0px;border: 0px solid #6c6c6c;}"));
    table->verticalHeader()->setStyleSheet(
        QStringLiteral("QHeaderView::section {background-color:GhostWhite;color: black;"
                       "padding-left: 2px;border: 0px solid #6c6c6c;}"));
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
    // The misspelt property styles nothing: the table keeps the desktop's look under its two
    // styled headers, and always has.
    table->setStyleSheet(QStringLiteral("backgrouond-color:rgb(122,122,122)"));

    const auto addAction = [this, table](const QString &text, void (Process::*slot)()) {
        auto *action = new QAction(text, table);
        connect(action, &QAction::triggered, this, slot);
        table->addAction(action);
    };
    addAction(tr("Add File(s)"), &Process::setopenfile);
    addAction(tr("View PDF File"), &Process::setopenselected);
    addAction(tr("Delete Selected Item(s)"), &Process::setremove);
    addAction(tr("Delete All Item(s)"), &Process::setremoveall);

    sorting = new SortOnClick(table);
    connect(sorting, &SortOnClick::sorted, this, &Process::listChanged);
}

/// The widths of the form fit its texts in a usual desktop font. Under a larger one, what would be
/// cut gets wider.
void Process::fitTexts()
{
    const auto buttons = ui->frame->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        const int margin = button->style()->pixelMetric(QStyle::PM_ButtonMargin, nullptr, button);
        const int hint = button->sizeHint().width();
        if (hint - margin > button->maximumWidth())
            button->setFixedWidth(hint);
    }
    const int column = qMax(ui->label_4->maximumWidth(), ui->label_4->sizeHint().width());
    // Of its larger font the rule label has a size of its own: its letters move together first, by
    // so little that nobody sees it.
    QFont font = ui->label_2->font();
    for (int percent = 99; percent >= 95 && ui->label_2->sizeHint().width() > column; --percent) {
        font.setLetterSpacing(QFont::PercentageSpacing, percent);
        ui->label_2->setFont(font);
    }
    for (QLabel *label : {ui->label_2, ui->label_4})
        label->setFixedWidth(qMax(column, ui->label_2->sizeHint().width()));
    ui->outputfolderlabel->setMaximumWidth(
        qMax(ui->outputfolderlabel->maximumWidth(), ui->outputfolderlabel->sizeHint().width()));
}

void Process::setUpBackground()
{
    setPictureGround(this, QStringLiteral(":/iconoption/icons/stock-ved.jpg"));
}

void Process::setabout()
{
    ui->aboutButton->setIcon(QIcon(QStringLiteral(":/iconoption/icons/about.png")));
    ui->aboutButton->setText(tr("About"));
    setWindowTitle(tr("Sendrivo"));
}

void Process::setabout1()
{
    aboutBox.exec();
}

void Process::keyReleaseEvent(QKeyEvent *)
{
}

/// While page counts are fetched nothing but About and the choices is usable. While a batch runs,
/// rows are addressed by number, so they must neither move nor go, and what is chosen for the batch
/// must hold for all its files; adding files is fine.
void Process::updateControls()
{
    const bool rowsMayMove = !fetchingPageCounts && !batchRunning;
    ui->openfileButton->setEnabled(!fetchingPageCounts);
    ui->runButton->setEnabled(!fetchingPageCounts);
    for (QWidget *control : {ui->removeButton, ui->removeallButton, ui->pushButton_up,
                             ui->pushButton_down, ui->pushButton_option})
        control->setEnabled(rowsMayMove);
    for (QWidget *choice : std::initializer_list<QWidget *>{ui->comboBox_rule, ui->comboBox_method,
                                                            ui->outputfolderEdit, ui->outputButton})
        choice->setEnabled(!batchRunning);
    const QList<QAction *> actions = ui->inputfiletableWidget->actions();
    actions.at(2)->setEnabled(rowsMayMove);
    actions.at(3)->setEnabled(rowsMayMove);
    ui->inputfiletableWidget->setContextMenuPolicy(fetchingPageCounts ? Qt::NoContextMenu
                                                                      : Qt::ActionsContextMenu);
    sorting->setEnabled(rowsMayMove);
}

QString Process::cellText(int row, int column) const
{
    const QTableWidgetItem *item = ui->inputfiletableWidget->item(row, column);
    return item ? item->text() : QString();
}
