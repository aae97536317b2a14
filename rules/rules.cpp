// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/rules.h"

#include "resources/screenplace.h"
#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "ui_rules.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QScrollArea>
#include <QSettings>
#include <QWheelEvent>

Rules::Rules(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui_Rules>()), fileReader(new QNetworkAccessManager(this))
{
    ui->setupUi(this);
    fitOnScreen();
    setWindowFlags(Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    setUpPageView();
    setSaveControlsEnabled(false);
    connectControls();
}

Rules::~Rules() = default;

/// On a screen that is too low for the least size of the page view, the view gives way: the lower
/// edge of the dialog must be within reach.
void Rules::fitOnScreen()
{
    placeOnFirstScreen(this);
    constexpr int leastPageHeight = 100;
    const int lack = minimumSizeHint().height() - height();
    if (lack > 0)
        ui->frame_back->setMinimumHeight(
            qMax(ui->frame_back->minimumHeight() - lack, leastPageHeight));
}

void Rules::setUpPageView()
{
    pageLabel = new QLabel;
    pageLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    pageLabel->setMouseTracking(true);
    scrollArea = new QScrollArea;
    scrollArea->setBackgroundRole(QPalette::Dark);
    scrollArea->setWidgetResizable(true);
    scrollArea->setWidget(pageLabel);
    auto *layout = new QHBoxLayout(ui->frame_back);
    layout->addWidget(scrollArea);

    pageNote = new QLabel;
    pageNote->setObjectName(QStringLiteral("pageNote"));
    pageNote->setTextFormat(Qt::PlainText);
    pageNote->setWordWrap(true);
    pageNote->setAutoFillBackground(true); // it may lie over an earlier page
    pageNote->setMargin(8);
    pageNote->hide();
    auto *overPage = new QVBoxLayout(scrollArea->viewport());
    overPage->addWidget(pageNote, 0, Qt::AlignTop);
}

void Rules::connectControls()
{
    connect(ui->spinBox_pagenumber, &QSpinBox::valueChanged, this, &Rules::setPageChange);
    connect(ui->spinBox_pagenumber, &QSpinBox::valueChanged, this, &Rules::setupdownVis);
    connect(ui->pushButton_zoomout, &QPushButton::clicked, this, &Rules::setZoomout);
    connect(ui->pushButton_zoomin, &QPushButton::clicked, this, &Rules::setZoomin);
    connect(ui->pushButton_up, &QPushButton::clicked, this, &Rules::setpageup);
    connect(ui->pushButton_down, &QPushButton::clicked, this, &Rules::setpagedown);
    connect(ui->pushButton_save, &QPushButton::clicked, this, &Rules::setsave);
    // Not by a default button: Return after a page number must not save.
    connect(ui->lineEdit_rule, &QLineEdit::returnPressed, this, &Rules::setsave);
}

void Rules::setSaveControlsEnabled(bool enabled)
{
    ui->pushButton_save->setEnabled(enabled);
    ui->lineEdit_rule->setEnabled(enabled);
    ui->lineEdit_rulebefore->setEnabled(enabled);
}

int Rules::totalPages() const
{
    return ui->label_pagenumber->text().remove(QLatin1Char('/')).toInt();
}

void Rules::setupdownVis()
{
    const int total = totalPages();
    const int page = ui->spinBox_pagenumber->value();
    ui->pushButton_down->setEnabled(total != 0 && page != 0 && page != 1);
    ui->pushButton_up->setEnabled(total != 0 && page < total);
}

void Rules::setpagedown()
{
    const int page = ui->spinBox_pagenumber->value();
    if (totalPages() != 0 && page >= 2)
        ui->spinBox_pagenumber->setValue(page - 1);
}

void Rules::setpageup()
{
    const int page = ui->spinBox_pagenumber->value();
    if (page < totalPages())
        ui->spinBox_pagenumber->setValue(page + 1);
}

void Rules::setZoomout()
{
    showAtZoom(zoom * 1.25F);
}

void Rules::setZoomin()
{
    // In double precision: with 0.8F the boxes of a page that was shrunk and enlarged again would
    // not come back to the same pixels.
    showAtZoom(static_cast<float>(zoom * 0.8));
}

void Rules::wheelEvent(QWheelEvent *event)
{
    if (ui->frame_back->mapFromGlobal(QCursor::pos()).y() >= 0)
        return;
    if (event->angleDelta().y() > 0)
        setZoomout();
    else
        setZoomin();
}

bool Rules::setsave()
{
    const auto refuse = [this](const QString &title, const QString &text) {
        QMessageBox::warning(this, title, text, QMessageBox::Ok);
        return false;
    };
    const QString name = ui->lineEdit_rule->text();
    if (name.isEmpty())
        return refuse(tr("Empty Rule Name"), tr("Please input rule name"));
    {
        QSettings settings(settingsFileName(), QSettings::IniFormat);
        if (isRuleNameTaken(settings, name))
            return refuse(tr("Existed Rule Name"),
                          tr("The rule name has been used, Please input another one"));
        if (!isRuleNameAllowed(name))
            return refuse(tr("Invalid Rule Name"),
                          tr("The rule name must not be \"zeph\" or contain a \"/\", Please input "
                             "another one"));
        if (!saveRule(settings, name, currentRule))
            return refuse(tr("Rule Not Saved"),
                          tr("The rule could not be saved in %1. %2")
                              .arg(QFileInfo(settings.fileName()).absoluteFilePath(),
                                   writeObstacle(settings.fileName())));
    }
    accept();
    return true;
}

void Rules::getdiv()
{
}

void Rules::getSpecifytext()
{
}
