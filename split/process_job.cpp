// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/logfile.h"
#include "mainwindow/process.h"
#include "mainwindow/progresspane.h"
#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "split/splitdecision.h"
#include "ui_process.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QSettings>

void Process::convertbegin()
{
    // A further press of Split must not start a second chain over the same rows.
    if (batchRunning && !fileFinished)
        return;
    fileFinished = false;

    const int rows = ui->inputfiletableWidget->rowCount();
    if (rows == 0) {
        endBatch();
        QMessageBox::warning(this, tr("Empty input"), tr("Please choose files to split."),
                             QMessageBox::Ok);
        return;
    }
    fileCount = rows;
    const QString folder = ui->outputfolderEdit->text();
    if (folder.isEmpty() || !QDir(folder).exists()) {
        endBatch();
        QMessageBox::information(this, tr("Invalid order"), tr("Please specify an output folder."),
                                 QMessageBox::Ok);
        ui->outputfolderEdit->clear();
        return;
    }
    if (fileIndex != 0)
        writeVerdict(fileIndex - 1);
    if (fileIndex < fileCount) {
        batchRunning = true;
        updateControls();
        if (fileIndex == 0)
            beginBatch();
        progress->append(cellText(fileIndex, 0));
        waitingForPageCount = isPageCountPending(fileIndex);
        if (!waitingForPageCount)
            splitPage();
        return;
    }
    fileIndex = 0;
    progress->append(tr("Conversion Finished."));
    endBatch();
}

void Process::beginBatch()
{
    inputs.clear();
    documents.clear();
    // A verdict that is still there would look like one of this batch.
    for (int row = 0; row < fileCount; ++row)
        delete ui->inputfiletableWidget->takeItem(row, 3);
    progress->append(tr("Conversion Start:"));
}

QStringList Process::splitPage()
{
    pageTexts.clear();
    trouble.clear();
    // A file without a single document must not be judged by the last one of the file before it.
    outputFile.clear();
    // Files can be added, but not moved or removed, while a batch runs.
    for (int row = inputs.count(); row < ui->inputfiletableWidget->rowCount(); ++row)
        inputs.add(cellText(row, 0), cellText(row, 0));
    const QSettings settings(settingsFileName(), QSettings::IniFormat);
    const QString ruleName = ui->comboBox_rule->currentText();
    const Subtext rule = readRule(settings, ruleName);
    if (rule.left == 0 && rule.top == 0)
        trouble.note(settingsFileName() + QLatin1String(": has no position for the rule ") +
                     ruleName);
    // Its controls are off while a batch runs, so somebody else has written the settings.
    if (fileIndex == 0)
        batchRule = QPoint(rule.left, rule.top);
    else if (batchRule != QPoint(rule.left, rule.top))
        trouble.fail(settingsFileName() + QLatin1String(": the rule was changed meanwhile"));
    ruleXpos = rule.left;
    ruleYpos = rule.top;
    ruleWid = rule.width;
    ruleHei = rule.height;
    ruleText = rule.text;
    collectLayouts();
    clearLayouts();
    return {};
}

void Process::setlink()
{
    const QString baseName = QFileInfo(cellText(fileIndex, 0)).baseName();
    const QDir folder(ui->outputfolderEdit->text());
    if (!baseName.isEmpty() && !folder.mkdir(baseName) && !folder.exists(baseName))
        trouble.note(folder.filePath(baseName) + QLatin1String(": this folder cannot be made"));
    getAlltheText();
}

void Process::getAlltheText()
{
    pageCount = cellText(fileIndex, 1).toInt();
    if (currentPage <= pageCount) {
        requestLayout(currentPage);
        progress->appendSoon(tr("Analyzing page ") + QString::number(currentPage));
        ++currentPage;
        return;
    }
    checkPageCount();
    currentPage = 1;
    const SplitDecision decision = decideSplit(pageTexts, ui->comboBox_method->currentIndex());
    rangeList = decision.rangeList;
    textList = decision.textList;
    splitpdffile();
}

void Process::endFile()
{
    mergeIndex = 0;
    rangeList.clear();
    textList.clear();
    pageTexts.clear();
    ++fileIndex;
    fileFinished = true;
    convertbegin();
}

void Process::endBatch()
{
    batchRunning = false;
    updateControls();
}

void Process::writeVerdict(int row)
{
    const bool isWritten = QFileInfo(outputFile).isFile() && !cellText(row, 1).isEmpty();
    const bool hasSucceeded = isWritten && !trouble.hasFailed();
    auto *item = new QTableWidgetItem(hasSucceeded ? tr("Succeed") : tr("Failed"));
    const QTableWidgetItem *pages = ui->inputfiletableWidget->item(row, 1);
    if (!trouble.lastComplaint().isEmpty())
        item->setToolTip(complaintToolTip(trouble.lastComplaint(), logFile()));
    else if (!hasSucceeded && pages)
        item->setToolTip(pages->toolTip());
    ui->inputfiletableWidget->setItem(row, 3, item);
}
