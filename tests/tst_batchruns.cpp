// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/batchrunner.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int timeLimitMs = 60000;

QString path(const QString &name)
{
    return QDir::current().filePath(name);
}

QList<int> childrenOf(qint64 process)
{
    QProcess lister;
    lister.start("pgrep", {"-P", QString::number(process)});
    lister.waitForFinished();
    QList<int> children;
    for (const QByteArray &line : lister.readAll().split('\n')) {
        if (!line.isEmpty())
            children.append(line.toInt());
    }
    return children;
}

/// Processor time that the process has used.
double secondsUsed(int process)
{
    const QByteArray state = readFile(QString("/proc/%1/stat").arg(process));
    const double ticks = state.mid(state.lastIndexOf(')')).split(' ').value(12).toDouble();
    return ticks / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

/// Three pages, the second of which takes a minute to read: it shows a text of a gigabyte.
QByteArray slowPdf()
{
    // Run lengths: 16 bytes as they are, then 128 times the same one, again and again.
    const QByteArray text = "\x0f"
                            "BT /F1 12 Tf (aa" +
                            QByteArray("\x81"
                                       "a")
                                .repeated(10 << 20);
    PdfBuilder builder;
    const int tree = builder.reserve();
    const int font = builder.addHelvetica();
    QList<int> pages;
    const auto addPage = [&](int contents) {
        pages.append(builder.add("<< /Type /Page /MediaBox [0 0 300 200] /Parent " +
                                 PdfBuilder::ref(tree) + " /Contents " + PdfBuilder::ref(contents) +
                                 " /Resources << /Font << /F1 " + PdfBuilder::ref(font) +
                                 " >> >> >>"));
    };
    constexpr int lengthOfQt = 4; // what qCompress() puts in front
    addPage(builder.addStream(showText(30, 100, "one")));
    addPage(builder.addStream(qCompress(text).mid(lengthOfQt),
                              "/Filter [/FlateDecode /RunLengthDecode]"));
    addPage(builder.addStream(showText(30, 100, "three")));
    builder.define(tree, "<< /Type /Pages /Count 3 /Kids " + PdfBuilder::refs(pages) + " >>");
    return builder.bytes(builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>"));
}

} // namespace

/// Runs of sendrivo-batch as processes: what they take from other processes and show to people, and
/// what is left when they are stopped, killed or overlap.
class TestBatchRuns : public QObject
{
    Q_OBJECT

    static constexpr int fileCount = 6;
    static constexpr int documentsEach = 80;
    std::unique_ptr<QTemporaryDir> output;
    QStringList inputs;
    QMap<QString, QByteArray> expected; ///< what an undisturbed run writes

    [[nodiscard]] QStringList arguments(const QStringList &further) const
    {
        return QStringList{"--position", place, "--output", output->path()} + further;
    }
    QString place;

private slots:
    void initTestCase()
    {
        QList<SampleInvoice> many;
        for (int k = 0; k < documentsEach; ++k)
            many.append({QString("N%1").arg(k), "C", 2});
        QVERIFY(writeSamplePdf(path("many.pdf"), many));
        for (const QJsonObject &fragment :
             jsonLines(batch({"--fragments", "1", "--json", path("many.pdf")}).output)) {
            if (fragment["text"].toString() == "N0")
                place = QString("%1,%2").arg(fragment["left"].toInt()).arg(fragment["top"].toInt());
        }
        for (int k = 0; k < fileCount; ++k) {
            inputs.append(path(QString("many %1.pdf").arg(k)));
            QFile::copy(path("many.pdf"), inputs.last());
        }
        init();
        QCOMPARE(batch(arguments(inputs)).exitCode, 0);
        expected = filesIn(output->path());
        QCOMPARE(expected.size(), fileCount * documentsEach);
    }

    void init() { output = std::make_unique<QTemporaryDir>(); }

    /// All ways to name the files. One that cannot be told by its name, or whose documents have no
    /// place, fails alone.
    void lists_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QByteArray>("begin");
        QTest::addColumn<QByteArray>("separator");
        const QByteArray mark = "\xef\xbb\xbf";
        QTest::newRow("NUL, -") << "-" << QByteArray() << QByteArray(1, '\0');
        QTest::newRow("lines, --files-from -")
            << "--files-from=-" << QByteArray() << QByteArray("\n");
        QTest::newRow("lines of Windows, file")
            << "--files-from=list" << mark << QByteArray("\r\n");
    }
    void lists()
    {
        QFETCH(QString, options);
        QFETCH(QByteArray, begin);
        QFETCH(QByteArray, separator);
        QDir().mkpath("folder/below");
        QFile::link(path("folder"), "folder/below/link");
        writeFile(output->filePath("many 2"), "a file in the way");
        // The last two are the same file.
        const QByteArrayList names = {inputs[0].toUtf8(), "many 2.pdf", "b\xff.pdf", "many 1.pdf",
                                      "folder/below/link/../many 1.pdf"};
        const QByteArray list = begin + names.join(separator) + separator;
        writeFile(path("list"), list);
        QProcess shell;
        shell.start("bash",
                    QStringList{"-c", R"(exec "$0" "$@" $'c\xff.pdf')",
                                QCoreApplication::applicationDirPath() + "/sendrivo-batch"} +
                        arguments({"--dry-run", "--json", options}));
        shell.write(list);
        shell.closeWriteChannel();
        QVERIFY(shell.waitForFinished(timeLimitMs));
        QCOMPARE(shell.exitCode(), 5);
        QMap<QString, int> found;
        for (const QJsonObject &line : jsonLines(shell.readAllStandardOutput()))
            found.insert(line["input"].toString(), line["exitCode"].toInt());
        QCOMPARE(found, (QMap<QString, int>{{inputs[0], 0},
                                            {inputs[1], 0},
                                            {inputs[2], 5},
                                            {QString::fromUtf8("b\ufffd.pdf"), 3},
                                            {QString::fromUtf8("c\ufffd.pdf"), 3}}));
    }

    /// Progress is for people: on a terminal only, and gone when the run is over.
    void progress()
    {
        const auto onTerminal = [&](const QStringList &options) {
            const QString call = QCoreApplication::applicationDirPath() + "/sendrivo-batch '" +
                                 (arguments(options) + inputs).join("' '") + "' >results";
            QProcess terminal;
            terminal.setProcessChannelMode(QProcess::MergedChannels);
            terminal.start("script",
                           {"--quiet", "--return", "--command", call, path("typescript")});
            terminal.waitForFinished(timeLimitMs);
            return terminal.readAll();
        };
        const QByteArray shown = onTerminal({"--jobs", "1"});
        QVERIFY2(shown.contains(" of 6 files, ") && shown.contains(" pages/s, ") &&
                     shown.contains(" left"),
                 shown);
        QVERIFY2(shown.endsWith("\r\033[K"), shown);
        QCOMPARE(onTerminal({"--quiet"}), QByteArray());
        QCOMPARE(batch(arguments(inputs)).errors, QByteArray());
    }

    /// A signal to all processes at once, as terminals and schedulers send it, ends the run and
    /// leaves no half file and no failure in the report. A run that is killed may leave a hidden
    /// folder. A further run completes both.
    void stopped_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGKILL") << SIGKILL;
    }
    void stopped()
    {
        QFETCH(int, number);
        const QStringList call =
            arguments({"--jobs", "1", "--resume", "--report", path("report")}) + inputs;
        QFile::remove(path("report"));
        for (const QString &input : std::as_const(inputs))
            QDir(output->path()).mkdir(QFileInfo(input).baseName());
        const auto process = startBatch(call);
        QVERIFY(process->waitForReadyRead(timeLimitMs)); // the first file is done
        // It may reach the processes of the inputs first.
        for (const int child : number != SIGKILL ? childrenOf(process->processId()) : QList<int>())
            ::kill(child, number);
        constexpr int headStartMs = 20;
        QTest::qSleep(headStartMs);
        QCOMPARE(::kill(-static_cast<pid_t>(process->processId()), number), 0);
        QVERIFY(process->waitForFinished(timeLimitMs));
        QCOMPARE(process->exitStatus(), QProcess::CrashExit);
        const QList<QJsonObject> done = jsonLines(readFile(path("report")));
        QVERIFY(!done.isEmpty() && done.size() < fileCount);
        for (const QJsonObject &line : done)
            QCOMPARE(line["verdict"].toString(), QString("done"));
        // Folders that were there are still there.
        QCOMPARE(QDir(output->path()).count(), inputs.size() + 2U);
        if (number != SIGKILL) {
            QCOMPARE(namesIn(output->path()).size(), done.size() * documentsEach);
            const QByteArray said = process->readAllStandardError();
            QVERIFY2(said.contains(QString("stopped: %1 of 6").arg(done.size()).toUtf8()), said);
        }
        QCOMPARE(batch(call).exitCode, 0);
        QCOMPARE(jsonLines(readFile(path("report"))).size(), fileCount);
        QVERIFY(filesIn(output->path()) == expected);
    }

    /// A reader of the results that goes away ends the run as a signal does.
    void outputIsClosed()
    {
        const QStringList call = arguments({"--jobs", "2", "--report", path("report")}) + inputs;
        QProcess shell;
        shell.start("bash",
                    QStringList{"-c", "\"$0\" \"$@\" | true; exit ${PIPESTATUS[0]}",
                                QCoreApplication::applicationDirPath() + "/sendrivo-batch"} +
                        call);
        QVERIFY(shell.waitForFinished(timeLimitMs));
        QCOMPARE(shell.exitCode(), 5);
        const qsizetype done = jsonLines(readFile(path("report"))).size();
        QVERIFY(done > 0 && done < fileCount);
        QCOMPARE(namesIn(output->path()).size(), done * documentsEach);
    }

    /// A shortage costs jobs, not the run, and too great a one ends it at once.
    void fewDescriptors_data()
    {
        QTest::addColumn<int>("descriptors");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("for fewer jobs") << 32 << 0;
        QTest::newRow("for nothing") << 6 << 3;
    }
    void fewDescriptors()
    {
        QFETCH(int, descriptors);
        QFETCH(int, exitCode);
#if defined(__SANITIZE_ADDRESS__)
        if (exitCode != 0)
            QSKIP("The sanitizers end a program that has no descriptors for their reports.");
#endif
        QProcess shell;
        shell.start("bash",
                    QStringList{"-c", "ulimit -n $0; exec \"$@\"", QString::number(descriptors),
                                QCoreApplication::applicationDirPath() + "/sendrivo-batch"} +
                        arguments({"--jobs", "64"}) + inputs);
        constexpr int secondsToEnd = 20;
        QVERIFY(shell.waitForFinished(secondsToEnd * 1000));
        QCOMPARE(shell.exitCode(), exitCode);
        QCOMPARE(shell.readAllStandardError().endsWith(": Too many open files\n"), exitCode != 0);
        QCOMPARE(filesIn(output->path()).size(), exitCode == 0 ? expected.size() : 0);
    }

    void overlappingRuns_data()
    {
        QTest::addColumn<QString>("existing");
        for (const char *existing : {"overwrite", "rename"})
            QTest::newRow(existing) << existing;
    }
    void overlappingRuns()
    {
        QFETCH(QString, existing);
        const QStringList call = arguments(QStringList{"--existing", existing} + inputs);
        const auto first = startBatch(call);
        const auto second = startBatch(call);
        for (QProcess *run : {first.get(), second.get()}) {
            QVERIFY(run->waitForFinished(timeLimitMs));
            QVERIFY2(run->exitCode() == 0, run->readAllStandardError());
        }
        QVERIFY(filesIn(output->path()) == expected);
    }

    /// The page is lost on which a worker dies, and no other; the input is not done. An input that
    /// is written to meanwhile is lost as a whole.
    void killedWorker_data()
    {
        QTest::addColumn<bool>("isWrittenTo");
        QTest::newRow("input stays") << false;
        QTest::newRow("input is written to") << true;
    }
    void killedWorker()
    {
        QFETCH(bool, isWrittenTo);
        writeFile(path("slow.pdf"), slowPdf());
        const QJsonObject text =
            jsonLines(batch({"--fragments", "1", "--json", path("slow.pdf")}).output).value(0);
        place = QString("%1,%2").arg(text["left"].toInt()).arg(text["top"].toInt());
        const auto run =
            startBatch(arguments({"--jobs", "1", "--json", "--method", "2", path("slow.pdf")}));
        QVERIFY(run->waitForStarted());
        const auto worker = [&] {
            return childrenOf(childrenOf(run->processId()).value(0, -1)).value(0, -1);
        };
        constexpr double inSecondPage = 0.5;
        QTRY_VERIFY_WITH_TIMEOUT(secondsUsed(worker()) > inSecondPage, timeLimitMs);
        if (isWrittenTo) {
            QFile input(path("slow.pdf"));
            struct stat before = {};
            QCOMPARE(::stat("slow.pdf", &before), 0);
            QVERIFY(input.open(QIODevice::ReadWrite) && input.write("%") == 1);
            input.close();
            const timespec times[] = {before.st_atim, before.st_mtim}; // as copying programs do
            QCOMPARE(::utimensat(AT_FDCWD, "slow.pdf", times, 0), 0);
        }
        QCOMPARE(::kill(worker(), SIGKILL), 0);
        QVERIFY(run->waitForFinished(timeLimitMs));
        QCOMPARE(run->exitCode(), isWrittenTo ? 3 : 4);
        const QJsonObject result = jsonLines(run->readAllStandardOutput()).value(0);
        if (isWrittenTo) {
            QCOMPARE(result["cause"].toString(), QString("was changed while it was read"));
            QCOMPARE(namesIn(output->path()), QStringList());
            return;
        }
        QCOMPARE(result["verdict"].toString(), QString("pages given up"));
        QCOMPARE(result["complaints"].toArray(),
                 QJsonArray{"page 2: given up: was stopped from outside while it was read"});
        QCOMPARE(namesIn(output->path()),
                 QStringList({"slow/1 one slow 1-2.pdf", "slow/2 three slow 3.pdf"}));
    }
};

SENDRIVO_TEST_MAIN(TestBatchRuns, QGuiApplication)
#include "tst_batchruns.moc"
