// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/fragmentboxes.h"
#include "rules/rules.h"
#include "rules/settingsfile.h"
#include "split/layoutscan.h"
#include "split/toolcommands.h"
#include "split/toolprocesses.h"
#include "ui_rules.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

namespace {

constexpr int converterTimeoutMs = 30000;

/// A layout of more lines is a broken one.
constexpr qsizetype maxFragments = 10000;

/// A page image of more pixels, which would take 320 MB, is not shown: there is no bound to the
/// zoom, but there is one to the memory. An A4 page can be enlarged ten times.
constexpr qreal maxImagePixels = 80e6;

QString temporaryFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation);
}

/// `image` at `zoom`, as sharp as the screen can show it; null when there is nothing to show.
QPixmap scaledPage(const QImage &image, float zoom, qreal devicePixelRatio)
{
    const QSize size(scaledLength(image.width(), zoom), scaledLength(image.height(), zoom));
    const QSizeF pixels = QSizeF(size) * devicePixelRatio;
    if (size.isEmpty() || pixels.width() * pixels.height() > maxImagePixels)
        return {};
    QPixmap page = QPixmap::fromImage(
        image.scaled(pixels.toSize(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    page.setDevicePixelRatio(devicePixelRatio);
    return page;
}

} // namespace

bool Rules::setIniImage()
{
    clearPageView();
    QSpinBox *pageBox = ui->spinBox_pagenumber;
    disconnect(pageBox, &QSpinBox::valueChanged, this, &Rules::setPageChange);
    const QSettings settings(settingsFileName(), QSettings::IniFormat);
    const QString file =
        settings.value(QStringLiteral("file/file"), QStringLiteral("Empty input")).toString();
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
        return false;
    }
    ui->label_pagenumber->setText(QLatin1Char('/') + QString::number(pages));
    if (!QFile::exists(file))
        return false;
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
    convertPage(ui->spinBox_pagenumber->value());
    clearPageView();
    setframeImage();
}

/// A page that could not be converted is an empty view and not the page shown before.
void Rules::convertPage(int page)
{
    generatePNGfile(sampleFile, page, previewOutput(temporaryFolder()));
    if (!QFile::exists(previewImageFile(temporaryFolder())))
        pageLabel->clear();
}

void Rules::generatePNGfile(QString pdffile, int page, QString pngfile)
{
    const QString command =
        previewCommand(QCoreApplication::applicationDirPath(), pdffile, page, pngfile);
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
        QFile::remove(previewImageFile(temporaryFolder()));
        QFile::remove(previewLayoutFile(temporaryFolder()));
    }
    converter.close();
}

bool Rules::setframeImage()
{
    const QImage image(previewImageFile(temporaryFolder()));
    const QPixmap page = scaledPage(image, zoom, devicePixelRatioF());
    if (page.isNull())
        return false;
    pageLabel->setPixmap(page);
    pageLabel->setMinimumSize(page.deviceIndependentSize().toSize());
    pageLabel->adjustSize();
    makeRuleButton();
    dropLayoutReply();
    const QUrl address = QUrl::fromLocalFile(previewLayoutFile(temporaryFolder()));
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
    clearPageView();
    makeRuleButton();
    zoom = newZoom;
    setframeImage();
}
