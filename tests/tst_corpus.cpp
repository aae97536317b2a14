// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTemporaryDir>
#include <QTest>

/// Both tools over a folder of real, odd and hostile PDF files, named by the environment variable
/// SENDRIVO_CORPUS: no crash, no hang, the same pages, valid output.
class TestCorpus : public QObject
{
    Q_OBJECT

private slots:
    void toolsHold_data();
    void toolsHold();
};

namespace {

constexpr int timeLimitMs = 60000;

/// What is wrong with the layout file, empty when nothing is.
QString layoutFault(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    if (decoder.hasError())
        return QStringLiteral("layout is not UTF-8");
    // Whole numbers from 1; beyond 99,999 pixels, which is 26 m, they are a mistake.
    static const QRegularExpression fragment(
        R"(^(<meta charset="utf-8">)?<span style="left:[1-9]\d{0,4};top:[1-9]\d{0,4};)"
        R"(width:[1-9]\d{0,4};height:[1-9]\d{0,4}">[^<>]*</span>$)");
    for (const QString &line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (!fragment.match(line).hasMatch())
            return QStringLiteral("not a fragment: ") + line;
        for (const QChar c : line) {
            if (c.category() == QChar::Other_Control)
                return QStringLiteral("control character in: ") + line;
        }
    }
    return {};
}

/// Runs both tools on the file; what is wrong, empty when nothing is.
QString faultOf(const QString &file)
{
    const QTemporaryDir folder;
    const QString info = folder.filePath("info.txt");
    const ToolResult described =
        runTool("stavekit", {file, "-getinfo", "-outfile", info}, timeLimitMs);
    const ToolResult converted =
        runTool("quillrend", {"-htmlformat", file, folder.filePath("split.xml")}, timeLimitMs);
    if (described.exitCode < 0 || converted.exitCode < 0)
        return QStringLiteral("a tool crashed or hung");
    if (converted.exitCode != described.exitCode && converted.exitCode != 4)
        return QStringLiteral("exit codes differ: ") + converted.errors;
    const QByteArray digits = readFile(info).split('\n').constFirst().mid(15);
    const int count = digits.toInt();
    if (digits.isEmpty() != (described.exitCode != 0))
        return QStringLiteral("page count does not fit the exit code");
    const QStringList layouts = QDir(folder.path()).entryList({"*.htm"}, QDir::Files, QDir::Name);
    if (converted.exitCode == 0 && layouts.size() != count)
        return QStringLiteral("%1 layouts of %2 pages").arg(layouts.size()).arg(count);
    for (const QString &layout : layouts) {
        const QString fault = layoutFault(readFile(folder.filePath(layout)));
        if (!fault.isEmpty())
            return layout + QStringLiteral(": ") + fault;
    }
    if (count == 0)
        return {};
    const QString merged = folder.filePath("out.pdf");
    const int exitCode = mergePages(file, QStringLiteral("1-%1").arg(count), merged).exitCode;
    if (exitCode != 0 && exitCode != 6)
        return QStringLiteral("merge fails with %1").arg(exitCode);
    if (exitCode == 0 && toolPageCount(merged, info) != count)
        return QStringLiteral("merged file has other pages");
    return {};
}

} // namespace

void TestCorpus::toolsHold_data()
{
    QTest::addColumn<QString>("file");
    const QString corpus = qEnvironmentVariable("SENDRIVO_CORPUS");
    if (corpus.isEmpty())
        QSKIP("SENDRIVO_CORPUS names no folder of PDF files");
    QDirIterator files(corpus, {"*.pdf"}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        QTest::newRow(qPrintable(QDir(corpus).relativeFilePath(file))) << file;
    }
}

void TestCorpus::toolsHold()
{
    QFETCH(QString, file);
    const QString fault = faultOf(file);
    QVERIFY2(fault.isEmpty(), qPrintable(fault));
}

SENDRIVO_TEST_MAIN(TestCorpus, QCoreApplication)
#include "tst_corpus.moc"
