// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/pagezoom.h"
#include "rules/rules.h"
#include "rules/settingsfile.h"
#include "split/layoutscan.h"
#include "split/toolcommands.h"
#include "split/toolprocesses.h"
#include "split/workingfolder.h"
#include "ui_rules.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QProcess>
#include <QScopedValueRollback>
#include <QSettings>
#include <QToolTip>
#include <QUrl>

#include <algorithm>

namespace {

constexpr int converterTimeoutMs = 30000;

/// A layout of more lines is a broken one.
constexpr qsizetype maxFragments = 10000;

/// Where the converter leaves the page's image; empty when there is no folder for working files.
QString imageFile()
{
    const QString folder = workingFolder();
    return folder.isEmpty() ? QString() : previewImageFile(folder);
}

/// `image` at `zoom`, as sharp as the screen can show it.
QPixmap scaledPage(const QImage &image, float zoom, qreal devicePixelRatio)
{
    const QSizeF pixels = QSizeF(sizeAtZoom(image.size(), zoom)) * devicePixelRatio;
    QPixmap page = QPixmap::fromImage(
        image.scaled(pixels.toSize(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    page.setDevicePixelRatio(devicePixelRatio);
    return page;
}

/// Shows that the program is at work as long as it lives.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(WaitCursor)
};

} // namespace

bool Rules::setIniImage()
{
    clearPageView();
    QSpinBox *pageBox = ui->spinBox_pagenumber;
    disconnect(pageBox, &QSpinBox::valueChanged, this, &Rules::setPageChange);
    const QSettings settings(settingsFileName(), QSettings::IniFormat);
    const QString file =
        settings.value(QStringLiteral("file/file"), QStringLiteral("Empty input")).toString();
    const QString fileName = QFileInfo(file).fileName();
    const int pages =
        settings.value(QStringLiteral("file/page"), QStringLiteral("0")).toString().toInt();
    const int firstPage = pages > 0 ? 1 : 0;
    pageBox->setMaximum(std::max(pages, 0));
    pageBox->setMinimum(firstPage);
    pageBox->setValue(firstPage);
    if (pages <= 0) {
        for (QPushButton *button : {ui->pushButton_down, ui->pushButton_up, ui->pushButton_zoomin,
                                    ui->pushButton_zoomout})
            button->setEnabled(false);
        setSaveControlsEnabled(false);
        makeRuleButton();
        showNote(QFile::exists(file) ? tr("%1 has no page that can be read.").arg(fileName)
                                     : tr("There is no file in the list to show a page of."));
        return false;
    }
    ui->label_pagenumber->setText(QLatin1Char('/') + QString::number(pages));
    if (!QFile::exists(file)) {
        showNote(tr("%1 does not exist any more.").arg(fileName));
        return false;
    }
    ui->pushButton_zoomin->setEnabled(true);
    ui->pushButton_zoomout->setEnabled(true);
    sampleFile = file;
    convertPage(1);
    setframeImage();
    setupdownVis();
    connect(pageBox, &QSpinBox::valueChanged, this, &Rules::setPageChange);
    return true;
}

void Rules::setPageChange()
{
    if (isChangingPage)
        return;
    const QScopedValueRollback<bool> changing(isChangingPage, true);
    int page = 0;
    do {
        page = ui->spinBox_pagenumber->value();
        convertPage(page);
        clearPageView();
        // The presses and turns of the wheel that came while the converter blocked the window are
        // taken now, and of the pages that they ask for only the last one is converted.
        QCoreApplication::processEvents();
    } while (page != ui->spinBox_pagenumber->value());
    clearPageView(); // of what a zoom step among them has drawn
    setframeImage();
}

/// A page that could not be converted is an empty view and not the page shown before.
void Rules::convertPage(int page)
{
    const QString folder = workingFolder();
    if (!folder.isEmpty())
        generatePNGfile(sampleFile, page, previewOutput(folder));
    if (!QFile::exists(imageFile()))
        clearPageImage();
}

void Rules::clearPageImage()
{
    pageLabel->clear();
    pageLabel->setMinimumSize(0, 0);
}

/// Says over the page why it is not the one that was asked for; an empty text takes that away.
void Rules::showNote(const QString &text)
{
    pageNote->setText(text);
    pageNote->setVisible(!text.isEmpty());
}

void Rules::generatePNGfile(QString pdffile, int page, QString pngfile)
{
    const QString command =
        previewCommand(QCoreApplication::applicationDirPath(), pdffile, page, pngfile);
    const WaitCursor cursor;
    qDebug().noquote() << command;
    QProcess converter;
    converter.startCommand(command, QIODevice::ReadWrite);
    converter.waitForFinished(converterTimeoutMs);
    const QString complaint = complaintOf(converter);
    if (!complaint.isEmpty())
        qWarning().noquote() << complaint;
    if (converter.error() != QProcess::FailedToStart) {
        hasConverted = true;
    } else if (hasConverted) {
        // A converter that runs removes its earlier outputs itself, whatever becomes of the page.
        QFile::remove(imageFile());
        QFile::remove(previewLayoutFile(workingFolder()));
    }
    converter.close();
}

bool Rules::setframeImage()
{
    const QImage image(imageFile());
    if (image.isNull()) {
        showNote(
            tr("Page %1 cannot be shown. The log says why.").arg(ui->spinBox_pagenumber->value()));
        return false;
    }
    switch (pageFit(image.size(), zoom, devicePixelRatioF())) {
    case PageFit::TooSmall:
        showNote(tr("The page is too small to be shown. Enlarge it."));
        return false;
    case PageFit::TooLarge:
        clearPageImage();
        showNote(tr("The page is too large to be shown. Shrink it."));
        return false;
    case PageFit::Shown:
        showNote(QString());
    }
    const QPixmap page = scaledPage(image, zoom, devicePixelRatioF());
    pageLabel->setPixmap(page);
    pageLabel->setMinimumSize(page.deviceIndependentSize().toSize());
    pageLabel->adjustSize();
    makeRuleButton();
    dropLayoutReply();
    const QUrl address = QUrl::fromLocalFile(previewLayoutFile(workingFolder()));
    layoutReply = fileReader->get(QNetworkRequest(address));
    connect(layoutReply, &QNetworkReply::finished, this, &Rules::gethtmlinfo);
    return true;
}

void Rules::gethtmlinfo()
{
    if (!layoutReply)
        return;
    const QString layout = QString::fromUtf8(layoutReply->readAll());
    dropLayoutReply();
    getTextPosition(layout);
    drawlabels();
}

/// The reply that is still under way belongs to a page that is no longer shown.
void Rules::dropLayoutReply()
{
    if (!layoutReply)
        return;
    layoutReply->disconnect(this);
    layoutReply->deleteLater();
    layoutReply.clear();
}

void Rules::getTextPosition(QString sxml)
{
    textLines = layoutFileLines(sxml).mid(0, maxFragments);
    subtexts.clear();
    subtexts.reserve(textLines.size());
    for (const QString &line : std::as_const(textLines))
        subtexts.append(parseFragment(line));
}

Subtext Rules::getSubtextInfo(QString sRow)
{
    return parseFragment(sRow);
}

int Rules::getpos(QString sPos, QString sRow)
{
    return styleValue(sPos, sRow);
}

QString Rules::gettext(QString sRow)
{
    return fragmentText(sRow);
}

void Rules::clearPageView()
{
    dropLayoutReply();
    textLines.clear();
    subtexts.clear();
    labelButtons.clear();
    qDeleteAll(pageLabel->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly));
}

void Rules::showAtZoom(float newZoom)
{
    newZoom = boundedZoom(newZoom);
    const QSize image = QImageReader(imageFile()).size();
    if (newZoom > zoom && pageFit(image, newZoom, devicePixelRatioF()) == PageFit::TooLarge) {
        QToolTip::showText(QCursor::pos(), tr("The page cannot be shown any larger."));
        return;
    }
    clearPageView();
    makeRuleButton();
    zoom = newZoom;
    setframeImage();
}
