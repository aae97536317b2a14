// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/process.h"
#include "split/inputstate.h"
#include "split/layoutscan.h"
#include "split/toolcommands.h"
#include "split/toolprocesses.h"
#include "split/workingfolder.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

void Process::collectLayouts()
{
    layoutFolder = workingFolder();
    earlierLayouts.clear();
    if (layoutFolder.isEmpty())
        return;
    QDirIterator files(layoutFolder,
                       QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (files.hasNext()) {
        if (isLayoutFile(QFileInfo(files.next()).fileName()))
            earlierLayouts.append(files.filePath());
    }
}

/// When the converter fails on a page or does not even start, the page has no text: it must not
/// get the text of the same page of an earlier file. Thousands of files are removed in turns, so
/// that the window stays usable.
void Process::clearLayouts()
{
    constexpr int filesOfATurn = 500;
    for (int i = 0; i < filesOfATurn && !earlierLayouts.isEmpty(); ++i) {
        const QString file = earlierLayouts.takeLast();
        if (!QFile::remove(file) && QFile::exists(file))
            layoutFolder.clear();
    }
    if (earlierLayouts.isEmpty())
        convertFile();
    else
        QTimer::singleShot(0, this, &Process::clearLayouts);
}

void Process::convertFile()
{
    const QString input = cellText(fileIndex, 0);
    if (layoutFolder.isEmpty()) {
        trouble.fail(input + QLatin1String(": there is no usable folder for page texts"));
        QTimer::singleShot(0, this, &Process::endFile);
        return;
    }
    // From now on documents are made only of the file that is read here.
    if (!recordInputState(QFile::encodeName(layoutFolder).toStdString(),
                          QFile::encodeName(input).toStdString()) &&
        QFile::exists(input))
        trouble.fail(layoutFolder + QLatin1String(": cannot be written to"));
    tools->start(layoutCommand(QCoreApplication::applicationDirPath(), layoutFolder, input),
                 [this](const QString &complaint) {
                     trouble.note(complaint);
                     setlink();
                 });
}

void Process::requestLayout(int page)
{
    const QUrl address = QUrl::fromLocalFile(layoutFile(layoutFolder, page));
    layoutReply = fileReader->get(QNetworkRequest(address));
    connect(layoutReply, &QNetworkReply::finished, this, &Process::gethtm);
}

void Process::gethtm()
{
    if (!layoutReply)
        return;
    // Every page has a layout file, an empty one when it has no text.
    if (layoutReply->error() != QNetworkReply::NoError && !trouble.hasFailed())
        trouble.fail(QStringLiteral("%1: the text of page %2 could not be read. %3")
                         .arg(cellText(fileIndex, 0), QString::number(currentPage - 1),
                              trouble.lastComplaint().section(QLatin1Char('\n'), -1)));
    const QString layout = QString::fromUtf8(layoutReply->readAll());
    layoutReply->deleteLater();
    layoutReply.clear();
    getTextPosition(layout);
}

/// A file that has grown since it was added would silently lose its last pages.
void Process::checkPageCount()
{
    if (QFile::exists(layoutFile(layoutFolder, pageCount + 1)))
        trouble.fail(cellText(fileIndex, 0) +
                     QLatin1String(": has more pages than it had when it was added; add it again"));
}

void Process::getTextPosition(const QString &sxml)
{
    layoutLines = layoutFileLines(sxml);
    pageTexts.append(textAtPosition(layoutLines, ruleXpos, ruleYpos));
    getAlltheText();
}

Subtext Process::getSubtextInfo(const QString &sRow)
{
    return parseFragment(sRow);
}

int Process::getpos(const QString &sPos, const QString &sRow)
{
    return styleValue(sPos, sRow);
}

QString Process::gettext(const QString &sRow)
{
    return fragmentText(sRow);
}
