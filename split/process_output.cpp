// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/process.h"
#include "mainwindow/progresspane.h"
#include "split/outputname.h"
#include "split/toolcommands.h"
#include "ui_process.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>

void Process::splitpdffile()
{
    if (mergeIndex > 0 && !QFile::exists(outputFile))
        qWarning().noquote() << "Not written:" << outputFile;
    if (mergeIndex >= rangeList.size()) {
        mergeIndex = 0;
        rangeList.clear();
        textList.clear();
        pageTexts.clear();
        ++fileIndex;
        fileFinished = true;
        convertbegin();
        return;
    }
    outputFile = nextOutputPath();
    const QString command =
        mergeCommand(QCoreApplication::applicationDirPath(), cellText(fileIndex, 0),
                     rangeList.at(mergeIndex), outputFile);
    progress->append(tr("Generating ") + outputFile);
    ++mergeIndex;
    startTool(command, &Process::splitpdffile);
}

/// The path of the next document. Two files of one batch that have the same base name share a
/// folder; where their documents would also share a name, the later one gets a number, so that
/// nothing written by this batch is overwritten. The same file listed twice writes the same
/// documents twice.
QString Process::nextOutputPath()
{
    const QString input = cellText(fileIndex, 0);
    OutputDocument document = {mergeIndex + 1, textList.at(mergeIndex), QFileInfo(input).baseName(),
                               rangeList.at(mergeIndex), 1};
    const auto pathOfCopy = [&](int copy) {
        document.copy = copy;
        return outputPath(ui->outputfolderEdit->text(), document,
                          ui->comboBox_method->currentIndex());
    };
    const QString path = firstFreePath(pathOfCopy, [&](const QString &candidate) {
        return inputOfOutput.value(candidate, input) == input;
    });
    inputOfOutput.insert(path, input);
    return path;
}
