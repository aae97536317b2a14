// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfobjects.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QSet>
#include <QStringDecoder>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <functional>
#include <optional>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

/// Both tools over a folder of real, odd and hostile PDF files, named by the environment variable
/// SENDRIVO_CORPUS: no crash, no hang, the same pages, valid output that looks like the input.
class TestCorpus : public QObject
{
    Q_OBJECT

private slots:
    void toolsHold_data();
    void toolsHold();
    void rangesLookTheSame_data() { toolsHold_data(); }
    void rangesLookTheSame();
    void cleanupTestCase();

private:
    int comparedRanges = 0;
    int leftOutRanges = 0;
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

/// Lines of complaints without what differs between two files that hold the same.
QSet<QString> kindsOf(const QString &complaints, const QString &file)
{
    static const QRegularExpression places(R"(\(.*?(offset|object).*?\)|\d+)");
    QString text = complaints;
    const QStringList lines =
        text.remove(file).remove(places).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return {lines.cbegin(), lines.cend()};
}

/// What the output's complaints have that the input's have not, empty when there is nothing.
QString newComplaints(const QString &input, const QString &inputComplaints, const QString &output,
                      const QString &outputComplaints)
{
    const QSet<QString> added = kindsOf(outputComplaints, output) - kindsOf(inputComplaints, input);
    return QStringList(added.cbegin(), added.cend()).join(QLatin1String(" | "));
}

/// At most four indexes of so many pages, the first and the last among them.
QList<int> someIndexes(qsizetype count)
{
    QSet<int> indexes;
    for (const qsizetype quarter : {0, 1, 2, 3})
        indexes.insert(static_cast<int>(quarter * (count - 1) / 3));
    return {indexes.cbegin(), indexes.cend()};
}

/// Compares the file of these pages (indexes from 0) with them; what is wrong.
QString differenceOf(const QString &file, const QList<int> &pages, const QString &output)
{
    const QString unsound =
        newComplaints(file, pdfobjects::complaints(file), output, pdfobjects::complaints(output));
    // What is wrong inside a file that only the tools could salvage, its parts have for the first
    // time.
    if (!unsound.isEmpty() && pdfobjects::canBeOpened(file))
        return QStringLiteral("qpdf complains: ") + unsound;
    const QList<int> compared = someIndexes(pages.size());
    QList<int> originals;
    for (const int index : compared)
        originals.append(pages[index]);
    const pdfreader::Drawing expected = pdfreader::drawPages(file, originals);
    const pdfreader::Drawing actual = pdfreader::drawPages(output, compared);
    for (qsizetype i = 0; i < compared.size(); ++i) {
        if (expected.pages[i].isNull()) // what MuPDF cannot draw gives nothing to compare with
            return {};
        if (actual.pages[i] != expected.pages[i])
            return QStringLiteral("page %1 looks different").arg(originals[i] + 1);
    }
    const QString found = newComplaints(file, expected.complaints, output, actual.complaints);
    return found.isEmpty() ? found : QStringLiteral("MuPDF complains: ") + found;
}

/// What the function gives, worked out in a process of its own, as the readers may crash or take
/// for ever; no value when it does not end in time.
std::optional<QString> inOtherProcess(const std::function<QString()> &function)
{
    constexpr int limitMs = 10000;
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0)
        return QStringLiteral("no pipe");
    const pid_t child = ::fork();
    if (child == 0) {
        const QByteArray text = function().toUtf8() + '.';
        _exit(::write(ends[1], text.constData(), static_cast<std::size_t>(text.size())) < 0);
    }
    ::close(ends[1]);
    pollfd waiting = {ends[0], POLLIN, 0};
    const bool isInTime = ::poll(&waiting, 1, limitMs) > 0;
    char buffer[4000];
    const ssize_t length = isInTime ? ::read(ends[0], buffer, sizeof buffer) : 0;
    ::close(ends[0]);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    if (!isInTime)
        return std::nullopt;
    return length > 0 ? QString::fromUtf8(buffer, length - 1) : QStringLiteral("a reader crashes");
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

void TestCorpus::rangesLookTheSame()
{
    QFETCH(QString, file);
    const QTemporaryDir folder;
    const int count = toolPageCount(file, folder.filePath("info.txt"));
    if (count <= 0)
        return;
    // Long lists take long without showing more.
    constexpr int maximalPages = 200;
    QList<int> all;
    QList<int> everySecond;
    for (int i = 0; i < std::min(count, maximalPages); ++i) {
        all.append(i);
        if (i % 2 == 0)
            everySecond.append(i);
    }
    QList<QList<int>> ranges = {all};
    if (count > 1)
        ranges += {{0}, {count - 1}, everySecond};
    const QString output = folder.filePath("out.pdf");
    for (const QList<int> &pages : ranges) {
        QStringList numbers;
        for (const int page : pages)
            numbers.append(QString::number(page + 1));
        const int exitCode = mergePages(file, numbers.join(QLatin1Char(' ')), output).exitCode;
        if (exitCode == 6) // its permissions forbid it
            return;
        QCOMPARE(exitCode, 0);
        const std::optional<QString> difference =
            inOtherProcess([&] { return differenceOf(file, pages, output); });
        ++(difference ? comparedRanges : leftOutRanges);
        if (file.endsWith(QLatin1String("stream-line-enders.pdf")))
            QEXPECT_FAIL("", "its streams begin at other bytes for MuPDF than for qpdf", Continue);
        if (file.endsWith(QLatin1String("button-set-out.pdf")))
            QEXPECT_FAIL("", "MuPDF knows the state of buttons that name no field only afterwards",
                         Continue);
        QVERIFY2(!difference || difference->isEmpty(), qPrintable(*difference));
    }
}

void TestCorpus::cleanupTestCase()
{
    qInfo("%d ranges compared, %d left out because the readers take too long for them",
          comparedRanges, leftOutRanges);
}

SENDRIVO_TEST_MAIN(TestCorpus, QCoreApplication)
#include "tst_corpus.moc"
