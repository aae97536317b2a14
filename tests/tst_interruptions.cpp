// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/inputstate.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

/// Tools that are killed, or whose input changes, while they work: whole files or none.
class TestInterruptions : public QObject
{
    Q_OBJECT

private slots:
    void killedToolLeavesWholeFiles();
    void inputChangedWhileItIsRead_data();
    void inputChangedWhileItIsRead();
    void pagesOfAnotherState_data();
    void pagesOfAnotherState();
    void starterIsKilled_data();
    void starterIsKilled();
    void noNamelessFiles_data();
    void noNamelessFiles();
    void readerIsLost_data();
    void readerIsLost();
};

/// Changes the input or what is recorded of it in the folder.
using Change = std::function<void(const QString &input, const QString &folder)>;

namespace {

const QByteArray stale = "left by an earlier run";
/// Enough that reading and writing them can be interrupted.
constexpr int pages = 2000;

/// Starts the tool that does the work on all of in.pdf in the folder.
void start(QProcess &process, const QString &work, const QString &folder)
{
    const QString tools = QCoreApplication::applicationDirPath();
    const QString input = folder + "/in.pdf";
    const QString output = folder + "/out.pdf";
    if (work == QLatin1String("-htmlformat"))
        process.start(tools + "/quillrend", {work, input, folder + "/split.xml"});
    else if (work == QLatin1String("-merge"))
        process.start(tools + "/stavekit",
                      {input, work, QStringLiteral("1-%1").arg(pages), "-outfile", output});
    else
        process.start(tools + "/stavekit", {input, work, "-outfile", output});
    QVERIFY(process.waitForStarted());
}

} // namespace

void TestInterruptions::killedToolLeavesWholeFiles()
{
    const QTemporaryDir folder;
    const QString output = folder.filePath("out.pdf");
    writeFile(folder.filePath("in.pdf"),
              simplePdf(QByteArrayList(pages, showText(20, 100, "page"))));
    QRandomGenerator random(1);
    int longest = 0; // ms of a run that nothing kills, the first
    int wholeFiles = 0;
    for (int round = 0; round <= 100; ++round) {
        if (round % 2 == 1)
            writeFile(output, stale);
        QElapsedTimer timer;
        timer.start();
        QProcess process;
        start(process, "-merge", folder.path());
        process.waitForFinished(round == 0 ? -1 : random.bounded(longest + longest / 4));
        process.kill();
        process.waitForFinished();
        longest = round == 0 ? static_cast<int>(timer.elapsed()) : longest;
        const bool isOld = round % 2 == 1 && readFile(output) == stale;
        if (QFile::exists(output) && !isOld) {
            QCOMPARE(pdfreader::pageCount(output), pages);
            ++wholeFiles;
        }
        QFile::remove(output);
        QCOMPARE(namesIn(folder.path()), QStringList("in.pdf"));
    }
    QVERIFY(wholeFiles > 1 && wholeFiles < 100); // kills hit runs in progress
}

void TestInterruptions::inputChangedWhileItIsRead_data()
{
    QTest::addColumn<bool>("isCutOff");
    QTest::newRow("cut off") << true;
    QTest::newRow("overwritten") << false;
}

void TestInterruptions::inputChangedWhileItIsRead()
{
    QFETCH(bool, isCutOff);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QByteArray bytes = simplePdf(QByteArrayList(pages, showText(20, 100, "page")));
    const QByteArray otherBytes = simplePdf(QByteArrayList(pages, showText(20, 100, "next")));
    QRandomGenerator random(1);
    for (int round = 0; round < 24; ++round) {
        // Pages whose text is lost are given up one by one.
        const bool isMerge = !isCutOff || round % 2 == 0;
        const QString output = folder.filePath(isMerge ? "out.pdf" : "split_pg_0001.htm");
        writeFile(input, bytes);
        QVERIFY(recordInputState(QDir::tempPath().toStdString(), input.toStdString()));
        QProcess process;
        start(process, isMerge ? "-merge" : "-htmlformat", folder.path());
        process.waitForFinished(random.bounded(isMerge ? 60 : 150));
        if (isCutOff) {
            QFile::resize(input, 5000);
        } else {
            QFile file(input);
            QVERIFY(file.open(QIODevice::ReadWrite));
            file.write(otherBytes);
        }
        QVERIFY(process.state() == QProcess::NotRunning || process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        // What was written before the cut is whole; what is left of the input can also be a sound
        // file of fewer pages or none.
        const bool isWritten = process.exitCode() == 0;
        QCOMPARE(QFile::exists(output), isWritten);
        if (isWritten && isMerge) {
            QCOMPARE(pdfreader::pageCount(output), pages);
            QCOMPARE(pdfreader::pageTexts(output).count("page"), pages);
        }
        QCOMPARE(process.readAllStandardError().count('\n'), isWritten ? 0 : 1);
        for (const QString &file : namesIn(folder.path()))
            QFile::remove(folder.filePath(file));
    }
}

void TestInterruptions::pagesOfAnotherState_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("isRefused");
    const auto row = [](const char *title, bool isRefused, const Change &change,
                        const QString &name = "in.pdf") {
        QTest::newRow(title) << name << change << isRefused;
    };
    const auto replace = [](const QString &input, const QString &) {
        writeFile(input + ".new", readFile(input));
        ::rename(qPrintable(input + ".new"), qPrintable(input));
    };
    const auto overwrite = [](const QString &input, const QString &) {
        struct stat before = {};
        ::stat(qPrintable(input), &before);
        writeFile(input, readFile(input));
        const timespec times[] = {before.st_atim, before.st_mtim};
        ::utimensat(AT_FDCWD, qPrintable(input), times, 0);
    };
    const auto andReplace = [replace](const Change &change) -> Change {
        return [replace, change](const QString &input, const QString &folder) {
            change(input, folder);
            replace(input, folder);
        };
    };
    row("unchanged", false, [](const QString &, const QString &) {});
    row("replaced", true, replace);
    row("replaced, odd name", true, replace, "1 2\nin \".pdf");
    row("overwritten, same size and time", true, overwrite);
    // Records that are none for this input, or that another user may have made.
    row("another file's", false, andReplace([](const QString &input, const QString &folder) {
            QFile::copy(input, input + "x");
            QVERIFY(recordInputState(folder.toStdString(), input.toStdString() + "x"));
        }));
    row("failed", false, andReplace([](const QString &, const QString &folder) {
            QVERIFY(!recordInputState(folder.toStdString(), "/missing"));
        }));
    row("folder for all", false, andReplace([](const QString &, const QString &folder) {
            ::chmod(qPrintable(folder), 0777);
        }));
    row("link", false, andReplace([](const QString &, const QString &folder) {
            QFile::rename(folder + "/sendrivo-input-state", folder + "/other");
            QFile::link("other", folder + "/sendrivo-input-state");
        }));
}

void TestInterruptions::pagesOfAnotherState()
{
    QFETCH(QString, name);
    QFETCH(Change, change);
    QFETCH(bool, isRefused);
    const QTemporaryDir folder;
    const QTemporaryDir temporary;
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", temporary.path().toUtf8());
    const auto restore = qScopeGuard([before] { qputenv("TMPDIR", before); });
    const QString input = folder.filePath(name);
    writeFile(input, simplePdf({showText(20, 100, "page")}));
    QVERIFY(recordInputState(temporary.path().toStdString(), input.toStdString()));
    change(input, temporary.path());
    const ToolResult result = mergePages(input, "1", folder.filePath("out.pdf"));
    QCOMPARE(result.exitCode, isRefused ? 3 : 0);
    QCOMPARE(result.errors.endsWith(": changed since its pages were read\n"), isRefused);
    QCOMPARE(QFile::exists(folder.filePath("out.pdf")), !isRefused);
}

void TestInterruptions::starterIsKilled_data()
{
    QTest::addColumn<QString>("starter");
    QTest::addColumn<bool>("endsTool");
    QTest::newRow("window") << "sendrivo" << true;
    QTest::newRow("script") << "script" << false;
}

void TestInterruptions::starterIsKilled()
{
    QFETCH(QString, starter);
    QFETCH(bool, endsTool);
    // A shell under that name, beside the tool.
    const QTemporaryDir programs;
    const QString tool = programs.filePath("quillrend");
    QFile::copy(QCoreApplication::applicationDirPath() + "/quillrend", tool);
    QVERIFY(QFile::copy("/bin/sh", programs.filePath(starter)));
    const QTemporaryDir folder;
    constexpr int longPages = 8000;
    writeFile(folder.filePath("in.pdf"),
              simplePdf(QByteArrayList(longPages, showText(20, 100, "page"))));
    int ends[2] = {-1, -1}; // all processes of the tool hold the second one
    QCOMPARE(::pipe(ends), 0);
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start(programs.filePath(starter),
                  {"-c", "\"$0\" -htmlformat in.pdf split.xml & wait", tool});
    QVERIFY(process.waitForStarted());
    ::close(ends[1]);
    QTRY_VERIFY(QFile::exists(layoutPath(folder.path(), 1)));
    process.kill();
    pollfd allEnded = {ends[0], 0, 0};
    constexpr int timeLimitMs = 60000;
    QCOMPARE(::poll(&allEnded, 1, timeLimitMs), 1);
    ::close(ends[0]);
    QCOMPARE(QFile::exists(layoutPath(folder.path(), longPages)), !endsTool);
    for (const QString &file : namesIn(folder.path()))
        QVERIFY2(file == "in.pdf" || readFile(folder.filePath(file)).endsWith("</span>\n"),
                 qPrintable(file));
}

void TestInterruptions::noNamelessFiles_data()
{
    QTest::addColumn<QString>("work");
    QTest::newRow("stavekit") << "-getinfo";
    QTest::newRow("quillrend") << "-htmlformat";
}

/// What a killed tool leaves goes with the next one; what another one is writing, or is none,
/// stays.
void TestInterruptions::noNamelessFiles()
{
#if defined(__SANITIZE_ADDRESS__)
    QSKIP("sanitizers must be loaded first");
#endif
    QFETCH(QString, work);
    const QTemporaryDir folder;
    writeFile(folder.filePath("in.pdf"), simplePdf({showText(20, 100, "page")}));
    const QStringList others = {".sendrivo-aaaaaa", ".sendrivo-cccccc", ".sendrivo-notes",
                                "in.pdf"};
    writeFile(folder.filePath(others[0]), "held");
    writeFile(folder.filePath(others[2]), "mine");
    QFile::link("in.pdf", folder.filePath(others[1]));
    const int held = ::open(qPrintable(folder.filePath(others[0])), O_RDONLY | O_CLOEXEC);
    QCOMPARE(::flock(held, LOCK_EX), 0);
    const auto run = [&](const char *mayEnd) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LD_PRELOAD", SENDRIVO_TEST_CALLS);
        environment.insert("SENDRIVO_TEST_NAMED", "1");
        environment.insert(mayEnd, "1");
        process.setProcessEnvironment(environment);
        start(process, work, folder.path());
        process.waitForFinished();
        return namesIn(folder.path()).size();
    };
    QCOMPARE(run("SENDRIVO_TEST_END"), others.size() + 1);
    QCOMPARE(run("NOTHING"), others.size() + 1);
    QFile::remove(work == "-getinfo" ? folder.filePath("out.pdf") : layoutPath(folder.path(), 1));
    QCOMPARE(namesIn(folder.path()), others);
    ::close(held);
}

void TestInterruptions::readerIsLost_data()
{
    QTest::addColumn<QString>("work");
    QTest::addColumn<int>("number");
    QTest::addColumn<QByteArray>("cause");
    for (const char *work : {"-merge", "-htmlformat", "-getinfo"}) {
        const auto row = [work](const char *name, int number, const char *cause) {
            QTest::addRow("%s %s", work, name) << QString(work) << number << QByteArray(cause);
        };
        row("crashes", SIGABRT, "crashes the reader");
        row("exceeds its time", SIGPROF, "takes too long to read, given up");
        row("is killed", SIGKILL, "was stopped from outside while it was read");
    }
}

void TestInterruptions::readerIsLost()
{
    QFETCH(QString, work);
    QFETCH(int, number);
    QFETCH(QByteArray, cause);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    // Damaged and long, so that it is still being read when the signal comes.
    QByteArray bytes = simplePdf(QByteArrayList(8000, showText(20, 100, "page")));
    writeFile(input, bytes.replace("startxref", "startxxxx"));
    if (work == QLatin1String("-htmlformat"))
        writeFile(layoutPath(folder.path(), 1), stale);
    QProcess process;
    start(process, work, folder.path());
    const auto children = [pid = process.processId()] {
        return readFile(QStringLiteral("/proc/%1/task/%1/children").arg(pid)).trimmed();
    };
    QTRY_VERIFY(!children().isEmpty());
#if !defined(__SANITIZE_ADDRESS__)
    if (readFile("/proc/self/status").contains("Seccomp:"))
        QTRY_VERIFY(readFile("/proc/" + children() + "/status").contains("Seccomp:\t2"));
#endif
    ::kill(children().toInt(), number);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 3);
    const QByteArray line = input.toUtf8() + ": " + cause + '\n';
    const QByteArray errors = process.readAllStandardError();
    QVERIFY2(errors.endsWith(": " + line) && errors.count('\n') == 1, errors);
    if (work == QLatin1String("-getinfo")) {
        QCOMPARE(readFile(folder.filePath("out.pdf")), "NumberOfPages: \nError: " + line);
        QFile::remove(folder.filePath("out.pdf"));
    }
    QCOMPARE(namesIn(folder.path()), QStringList("in.pdf"));
}

SENDRIVO_TEST_MAIN(TestInterruptions, QCoreApplication)
#include "tst_interruptions.moc"
