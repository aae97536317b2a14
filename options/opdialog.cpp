// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/opdialog.h"

#include "resources/lightground.h"
#include "ui_opdialog.h"

#include <QCloseEvent>
#include <QFontInfo>

namespace {

/// Makes the font of `widget` smaller until fits() is true.
template <class Fits>
void shrinkFont(QWidget *widget, const Fits &fits)
{
    constexpr qreal smallestPt = 6;
    QFont font = widget->font();
    font.setPointSizeF(QFontInfo(font).pointSizeF());
    while (!fits() && font.pointSizeF() > smallestPt) {
        font.setPointSizeF(font.pointSizeF() - 0.5);
        widget->setFont(font);
        // Before they are first shown, widgets do not tell their layouts of a new font. (Nor do
        // combo boxes forget their least height: the form bounds it.)
        const auto layouts = widget->findChildren<QLayout *>();
        for (QLayout *layout : layouts)
            layout->invalidate();
    }
}

} // namespace

OpDialog::OpDialog(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui_OpDialog>())
{
    ui->setupUi(this);
    setFixedSize(size());
    options = optionTable(*ui);

    // Two connections in this order: "Apply" hides the dialog first and saves second.
    connect(ui->pushButton_cancel, &QPushButton::clicked, this, &OpDialog::close);
    connect(ui->pushButton_apply, &QPushButton::clicked, this, &OpDialog::close);
    connect(ui->pushButton_apply, &QPushButton::clicked, this, &OpDialog::setop);

    setPictureGround(this, QStringLiteral(":/iconoption/icons/graybackgr.png"));
    addPages();
    connect(ui->listWidge_option, &QListWidget::currentRowChanged, ui->stackedWidget_option,
            &QStackedWidget::setCurrentIndex);
    connect(ui->listWidge_option, &QListWidget::itemChanged, this, &OpDialog::setstackenable);
    connect(ui->stackedWidget_option, &QStackedWidget::currentChanged, this,
            &OpDialog::changeStackedDisplay);
    placeWidgets();
    showAlertIcons();
    fitFonts();

    connect(ui->comboBox_generalsettings, &QComboBox::currentIndexChanged, this,
            &OpDialog::setGeneralSetting);
    allCustomConnection();
    connect(ui->comboBox_clr_down_type, &QComboBox::currentIndexChanged, this,
            &OpDialog::closeClrDSres);
    connect(ui->comboBox_gry_down_type, &QComboBox::currentIndexChanged, this,
            &OpDialog::closeGryDSres);
    connect(ui->comboBox__mno_down_type, &QComboBox::currentIndexChanged, this,
            &OpDialog::closeMnoDSres);
    setallowshow();
    connect(ui->lineEdit_userpassword, &QLineEdit::editingFinished, this, &OpDialog::setwarning);
    connect(ui->lineEdit_ownerpassword, &QLineEdit::editingFinished, this, &OpDialog::setwarning);
}

OpDialog::~OpDialog() = default;

void OpDialog::addPages()
{
    for (const QString &name : {tr("Image"), tr("Fonts"), tr("Security"), tr("Annotation")}) {
        auto *item = new QListWidgetItem(name, ui->listWidge_option);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }
}

void OpDialog::placeWidgets()
{
    setFixedSize(558, 393);
    ui->listWidge_option->setGeometry(10, 37, 91, 321);
    ui->stackedWidget_option->setGeometry(100, 37, 451, 321);
    ui->pushButton_apply->setGeometry(400, 363, 71, 26);
    ui->pushButton_cancel->setGeometry(480, 363, 71, 26);
    ui->stackedWidget_option->setCurrentIndex(0);
    ui->listWidge_option->setCurrentRow(0);
}

void OpDialog::showAlertIcons()
{
    // Through an icon, which takes the picture of the right size for the screen out of the file.
    const QIcon alert(QStringLiteral(":/iconoption/icons/alert.ico"));
    for (QLabel *label : {ui->label_alert_mark, ui->label_alertPDFA})
        label->setPixmap(alert.pixmap(QSize(28, 28), devicePixelRatioF()));
}

void OpDialog::fitFonts()
{
    // The size of the window is fixed, the font of the desktop is not: a font too large for the
    // window is made smaller, so that nothing is cut.
    shrinkFont(this, [pages = ui->stackedWidget_option] {
        QSize needed;
        for (int page = 0; page < pages->count(); ++page)
            needed = needed.expandedTo(pages->widget(page)->minimumSizeHint());
        return needed.width() <= pages->width() && needed.height() <= pages->height();
    });
    shrinkFont(ui->listWidge_option, [list = ui->listWidge_option] {
        return list->sizeHintForColumn(0) <= list->width() - 2 * list->frameWidth();
    });
}

void OpDialog::closeEvent(QCloseEvent *event)
{
    event->accept();
}
