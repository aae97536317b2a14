// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/process.h"
#include "mainwindow/progresspane.h"
#include "split/outputname.h"
#include "split/plaintext.h"
#include "split/toolcommands.h"
#include "split/toolprocesses.h"
#include "ui_process.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace {

/// What a tool has said of the document that it was to write, without the document's path.
QString withoutName(const QString &complaint, const QString &path)
{
    QStringList lines = complaint.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = withoutControlCharacters(line).replace(withoutControlCharacters(path),
                                                      QLatin1String("the document"));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

void Process::splitpdffile()
{
    if (mergeIndex >= rangeList.size()) {
        endFile();
        return;
    }
    outputFile = nextOutputPath();
    const QString document = currentDocumentName();
    const QString command =
        mergeCommand(QCoreApplication::applicationDirPath(), cellText(fileIndex, 0),
                     rangeList.at(mergeIndex), outputFile);
    progress->append(tr("Generating ") + outputFile);
    removeEarlierDocument(document);
    ++mergeIndex;
    tools->start(command, [this, document](const QString &complaint) {
        documentEnded(document, complaint);
        splitpdffile();
    });
}

/// The path of the next document. Two files of one batch that have the same base name share a
/// folder; where their documents would also share a name, the later one gets a number, so that
/// nothing written by this batch is overwritten. Nor does a document take the place of a file that
/// is still to be split. The same file listed twice writes the same documents twice.
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
    return firstFreePath(pathOfCopy, [&](const QString &candidate) {
        const QString writer = documents.ownerOf(candidate);
        return (writer.isEmpty() || writer == input) && inputs.ownerOf(candidate).isEmpty();
    });
}

/// The document being written, for people and log. Not by its name: that holds a text of its pages,
/// which is nobody else's business.
QString Process::currentDocumentName() const
{
    return QStringLiteral("%1: document %2, pages %3")
        .arg(cellText(fileIndex, 0), QString::number(mergeIndex + 1), rangeList.at(mergeIndex));
}

/// The document of an earlier batch must not be taken for one of this batch when its tool fails.
void Process::removeEarlierDocument(const QString &document)
{
    QFile earlier(outputFile);
    if (!earlier.remove() && QFileInfo::exists(outputFile))
        trouble.fail(document + QLatin1String(": what has its name cannot be replaced: ") +
                     earlier.errorString());
}

void Process::documentEnded(const QString &document, const QString &complaint)
{
    const QString nameless = withoutName(complaint, outputFile);
    if (QFileInfo(outputFile).isFile()) {
        documents.add(outputFile, cellText(fileIndex, 0));
        trouble.note(nameless);
    } else {
        trouble.note(QLatin1String("Not written: ") + document +
                     (nameless.isEmpty() ? QString() : QLatin1String(". ") + nameless));
    }
}
