// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/stagingfolder.h"
#include "batch/stagingsweep.h"
#include "tests/support/batchrunner.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"

#include <QDir>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int timeLimitMs = 60000;

QString path(const QString &name)
{
    return QDir::current().filePath(name);
}

void writePages(const QString &name, const QList<QByteArray> &texts)
{
    QDir().mkpath(QFileInfo(name).path());
    QList<QByteArray> pages;
    for (const QByteArray &text : texts)
        pages.append(showText(30, 100, text));
    writeFile(name, simplePdf(pages));
}

/// While it lives, programs that are started see a poorer file system: poorfilesystem.cpp.
struct PoorFileSystem
{
    PoorFileSystem(const char *name, const QByteArray &value) : variable(name)
    {
        qputenv("LD_PRELOAD", SENDRIVO_POOR_FILE_SYSTEM);
        qputenv("ASAN_OPTIONS", "verify_asan_link_order=0"); // the sanitizer wants to be the first
        qputenv(variable, value);
    }
    ~PoorFileSystem()
    {
        for (const char *name : {"LD_PRELOAD", "ASAN_OPTIONS", variable})
            qunsetenv(name);
    }
    Q_DISABLE_COPY(PoorFileSystem)

    const char *variable;
};

} // namespace

/// What is there already stays, and documents of one run stay beside each other.
class TestBatchSafety : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> output;

    [[nodiscard]] QStringList arguments(const QStringList &further) const
    {
        return QStringList{"--position", "1,1", "--tolerance", "900", "--output", output->path()} +
               further;
    }

private slots:
    void init()
    {
        output = std::make_unique<QTemporaryDir>();
        writePages(path("in.pdf"), {"A", "B", "C"});
    }

    /// What a killed run has left goes, and nothing else; a file that it had replaced comes back.
    void abandoned_data()
    {
        QTest::addColumn<bool>("stays");
        QTest::newRow("killed") << false;
        QTest::newRow("link to somebody's folder") << true;
        QTest::newRow("not made by this program") << true;
        QTest::newRow("of another system, changed just now") << true;
        QTest::newRow("of another system, changed days ago") << false;
    }
    void abandoned()
    {
        QFETCH(bool, stays);
        const QByteArray row = QTest::currentDataTag();
        const QString folder = output->filePath("in");
        const pid_t killed = ::fork();
        if (killed == 0) {
            QDir().mkdir(folder);
            const StagingFolder staging(folder);
            ::_exit(0);
        }
        ::waitpid(killed, nullptr, 0);
        QString staging =
            folder + '/' +
            QDir(folder).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot).value(0);
        QDir(staging).mkdir("old");
        writeFile(staging + "/old/report", "mine");
        if (row.startsWith("link")) {
            QVERIFY(QFile::rename(staging, output->filePath("precious")));
            QVERIFY(QFile::link(output->filePath("precious"), staging));
        } else if (row.startsWith("not")) {
            QVERIFY(QFile::remove(staging + '/' + stagingKind.markName));
        } else if (row.startsWith("of")) {
            const QString other = folder + '/' + stagingKind.namePrefix + "host-start-aB3cD4";
            QVERIFY(QFile::rename(staging, other));
            staging = other;
        }
        if (row.endsWith("ago")) {
            const timespec then = {::time(nullptr) - 172800, 0};
            const timespec times[] = {then, then};
            for (const QString &name : {staging, staging + "/new"})
                QCOMPARE(::utimensat(AT_FDCWD, qPrintable(name), times, 0), 0);
        }
        QCOMPARE(batch(arguments({path("in.pdf")})).exitCode, 0);
        QCOMPARE(QFile::exists(staging + "/old/report"), stays);
        QCOMPARE(QFile::exists(folder + "/report"), !stays);
        QCOMPARE(QFile::exists(staging), stays);
    }

    /// Documents get the same name in the same folder, and all of them are there in the end.
    void besideEachOther_data()
    {
        QTest::addColumn<QList<QStringList>>("calls");
        QTest::addColumn<QStringList>("names");
        const QStringList resumed = {"--resume", "--report", path("report")};
        QTest::newRow("names in other case, one would be hidden")
            << QList<QStringList>{{"--name", "{text}", path("case.pdf")}}
            << QStringList{"case/Ab.pdf", "case/_a.pdf", "case/aB (2).pdf"};
        QTest::newRow("subfolder with two names")
            << QList<QStringList>{{"--name", "{n}", "--jobs", "2", path("A.pdf"), path("B.pdf")}}
            << QStringList{"A/1 (2).pdf", "A/1.pdf"};
        QTest::newRow("report of another night and rule")
            << QList<QStringList>{resumed + QStringList{"--method", "2", path("A.pdf")},
                                  resumed + QStringList{path("night/A.pdf")}}
            << QStringList{"A/1 mine A 1 (2).pdf", "A/1 mine A 1.pdf"};
    }
    void besideEachOther()
    {
        QFETCH(QList<QStringList>, calls);
        writePages(path("case.pdf"), {"Ab", "aB", ".a"});
        for (const char *name : {"A.pdf", "B.pdf", "night/A.pdf"})
            writePages(path(name), {"mine"});
        QFile::remove(path("report"));
        QDir(output->path()).mkdir("A");
        QVERIFY(QFile::link("A", output->filePath("B")));
        for (const QStringList &call : calls)
            QCOMPARE(batch(arguments(call)).exitCode, 0);
        QTEST(namesIn(output->path()), "names");
    }

    /// File systems that encrypt names take shorter ones.
    void shortNames()
    {
        writePages(path("in.pdf"), {QByteArray(200, 'x')});
        const PoorFileSystem poor("POOR_NAME_MAX", "40");
        for (const QStringList &options : {QStringList(), QStringList{"--name", "{text}"}}) {
            QCOMPARE(batch(arguments(options + QStringList{path("in.pdf")})).exitCode, 0);
            QCOMPARE(namesIn(output->path() + "/in").last().size(), 40);
        }
    }

    /// What a program prints does not get into the files that it writes.
    void closedStreams_data()
    {
        QTest::addColumn<QString>("program");
        for (const char *program : {"sendrivo-batch", "quillrend", "stavekit"})
            QTest::newRow(program) << program;
    }
    void closedStreams()
    {
        QFETCH(QString, program);
        const bool isBatch = program == "sendrivo-batch";
        const QStringList call =
            QStringList{"-c", R"(exec "$0" "$@" <&- >&- 2>&-)",
                        QCoreApplication::applicationDirPath() + '/' + program} +
            (isBatch ? arguments({"--report", "report", path("in.pdf")}) : QStringList("-version"));
        QFile::remove("report");
        QCOMPARE(QProcess::execute("bash", call), 0);
        QCOMPARE(readFile("report").count('\n'), isBatch ? 1 : 0);
    }

    /// Where there are no links a file that is being replaced has no name for a moment.
    void killedWhileReplacing()
    {
        QDir(output->path()).mkdir("in");
        const QString there = output->filePath("in/2 B in 2.pdf");
        writeFile(there, "mine");
        const auto runPoorly = [&](const QStringList &options, const QByteArray &killed = "") {
            const PoorFileSystem poor("POOR_KILL", killed);
            const auto run = startBatch(arguments(options + QStringList{path("in.pdf")}));
            return run->waitForFinished(timeLimitMs) && run->exitStatus() == QProcess::NormalExit
                       ? run->exitCode()
                       : -1;
        };
        QCOMPARE(runPoorly({}, "yes"), -1);
        QVERIFY(!QFile::exists(there));
        QFile::remove(output->filePath("in/1 A in 1.pdf"));
        QCOMPARE(runPoorly({"--existing", "fail"}), 5);
        QCOMPARE(filesIn(output->path()), (QMap<QString, QByteArray>{{"in/2 B in 2.pdf", "mine"}}));
        QCOMPARE(runPoorly({}), 0);
        QCOMPARE(namesIn(output->path()).size(), 3);
        QVERIFY(readFile(there) != "mine");
    }
};

SENDRIVO_TEST_MAIN(TestBatchSafety, QGuiApplication)
#include "tst_batchsafety.moc"
