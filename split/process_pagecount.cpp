// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/numberitem.h"
#include "mainwindow/process.h"
#include "mainwindow/progresspane.h"
#include "split/toolcommands.h"
#include "ui_process.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>

void Process::getpdfpage()
{
    if (loadIndex < pendingFiles.size()) {
        const QString command =
            pageCountCommand(QCoreApplication::applicationDirPath(), pendingFiles.at(loadIndex));
        qDebug().noquote() << command;
        startTool(command, &Process::setpdfpage);
        return;
    }
    progress->append(tr("Finished."));
    fetchingPageCounts = false;
    updateControls();
}

void Process::setpdfpage()
{
    const QString path = pageInfoFile(QCoreApplication::applicationDirPath());
    qDebug() << "Information file is:" << path;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        // Without the file there is nothing that would say which page count belongs to which row,
        // so the queue stops here.
        qDebug("No information file.");
        return;
    }
    const QString digits = pageCountDigits(QString::fromUtf8(file.readAll()));
    pageCount = digits.toInt();
    qDebug("Page number is:%d.\n", pageCount);
    file.close();
    file.remove();

    const int row = pendingRows.value(loadIndex, QStringLiteral("-1")).toInt();
    if (row >= 0 && row < ui->inputfiletableWidget->rowCount())
        ui->inputfiletableWidget->setItem(row, 1, new NumberItem(digits, digits.toInt()));
    progress->append(tr("Loading ") + pendingFiles.value(loadIndex));
    ++loadIndex;
    getpdfpage();
}
