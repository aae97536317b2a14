// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/logfile.h"
#include "mainwindow/numberitem.h"
#include "mainwindow/process.h"
#include "mainwindow/progresspane.h"
#include "split/toolcommands.h"
#include "split/toolprocesses.h"
#include "ui_process.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>

void Process::getpdfpage()
{
    if (loadIndex < pendingFiles.size()) {
        pageInfoPath = pageInfo.prepare();
        if (pageInfoPath.isEmpty()) {
            pageCountComplaint = tr("There is no folder for working files.");
            stopPageCounts();
            return;
        }
        const QString command = pageCountCommand(QCoreApplication::applicationDirPath(),
                                                 pendingFiles.at(loadIndex), pageInfoPath);
        qDebug().noquote() << command;
        tools->start(command, [this](const QString &complaint) {
            pageCountComplaint = complaint;
            setpdfpage();
        });
        return;
    }
    progress->append(tr("Finished."));
    fetchingPageCounts = false;
    updateControls();
    returnFocus();
    goOnWithCountedFile();
}

void Process::setpdfpage()
{
    qDebug() << "Information file is:" << pageInfoPath;
    QFile file(pageInfoPath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        // A full disk or a lost right, perhaps: the working folder is another place.
        if (pageInfo.leaveApplicationFolder())
            getpdfpage();
        else
            stopPageCounts();
        return;
    }
    if (!pageCountComplaint.isEmpty())
        qWarning().noquote() << pageCountComplaint;
    const QString info = QString::fromUtf8(file.readAll());
    file.close();
    file.remove();
    takePageCount(pendingRows.value(loadIndex, QStringLiteral("-1")).toInt(), info);
    progress->append(tr("Loading ") + pendingFiles.value(loadIndex));
    ++loadIndex;
    goOnWithCountedFile();
    getpdfpage();
}

/// Shows what stavekit has reported of the file in a row, and why when that is no count.
void Process::takePageCount(int row, const QString &info)
{
    const QString digits = pageCountDigits(info);
    pageCount = digits.toInt();
    qDebug("Page number is:%d.\n", pageCount);
    if (pageInfoValue(info, QLatin1String("Repaired")) == QLatin1String("yes"))
        qWarning().noquote() << pendingFiles.value(loadIndex) +
                                    QLatin1String(": is damaged; what could be repaired is used");
    if (row < 0 || row >= ui->inputfiletableWidget->rowCount())
        return;
    auto *item = new NumberItem(digits, digits.toInt());
    const QString cause = pageInfoValue(info, QLatin1String("Error"));
    if (!cause.isEmpty())
        item->setToolTip(complaintToolTip(cause, logFile()));
    ui->inputfiletableWidget->setItem(row, 1, item);
}

/// Without an info file there is nothing that would say which page count belongs to which row, so
/// the queue stops here, and says why.
void Process::stopPageCounts()
{
    qDebug("No information file.");
    qWarning().noquote() << pageCountComplaint;
    progress->append(tr("No information file. ") + pageCountComplaint);
    pageCountsStopped = true;
    goOnWithCountedFile();
}

/// Whether the page count of the file in a row is still to come.
bool Process::isPageCountPending(int row) const
{
    return fetchingPageCounts && !pageCountsStopped &&
           pendingRows.indexOf(QString::number(row), loadIndex) >= 0;
}

/// A batch that has reached a file before its page count goes on once it is there.
void Process::goOnWithCountedFile()
{
    if (!waitingForPageCount || isPageCountPending(fileIndex))
        return;
    waitingForPageCount = false;
    splitPage();
}
