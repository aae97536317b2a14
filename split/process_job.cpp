// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/process.h"
#include "mainwindow/progresspane.h"
#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "split/splitdecision.h"
#include "split/toolcommands.h"
#include "ui_process.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

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
        if (fileIndex == 0) {
            inputOfOutput.clear();
            progress->append(tr("Conversion Start:"));
        }
        progress->append(cellText(fileIndex, 0));
        splitPage();
        return;
    }
    fileIndex = 0;
    progress->append(tr("Conversion Finished."));
    endBatch();
}

QStringList Process::splitPage()
{
    pageTexts.clear();
    // A file without a single document must not be judged by the last one of the file before it.
    outputFile.clear();
    const QSettings settings(settingsFileName(), QSettings::IniFormat);
    const Subtext rule = readRule(settings, ui->comboBox_rule->currentText());
    ruleXpos = rule.left;
    ruleYpos = rule.top;
    ruleWid = rule.width;
    ruleHei = rule.height;
    ruleText = rule.text;
    removeEarlierLayouts();
    startTool(layoutCommand(QCoreApplication::applicationDirPath(),
                            QStandardPaths::writableLocation(QStandardPaths::TempLocation),
                            cellText(fileIndex, 0)),
              &Process::setlink);
    return {};
}

void Process::setlink()
{
    const QString baseName = QFileInfo(cellText(fileIndex, 0)).baseName();
    QDir(ui->outputfolderEdit->text()).mkdir(baseName);
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
    currentPage = 1;
    const SplitDecision decision = decideSplit(pageTexts, ui->comboBox_method->currentIndex());
    rangeList = decision.rangeList;
    textList = decision.textList;
    splitpdffile();
}

void Process::endBatch()
{
    batchRunning = false;
    updateControls();
}

void Process::writeVerdict(int row)
{
    const bool isWritten = QFile::exists(outputFile) && !cellText(row, 1).isEmpty();
    ui->inputfiletableWidget->setItem(
        row, 3, new QTableWidgetItem(isWritten ? tr("Succeed") : tr("Failed")));
}

/// When the converter fails on a page or does not even start, the page has no text: it must not
/// get the text of the same page of an earlier file.
void Process::removeEarlierLayouts()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    const int pages = cellText(fileIndex, 1).toInt();
    for (int page = 1; page <= std::min(pages, layoutPagesLeft); ++page)
        QFile::remove(layoutFile(folder, page));
    layoutPagesLeft = std::max(layoutPagesLeft, pages);
}
