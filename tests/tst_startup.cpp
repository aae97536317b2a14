// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/logfile.h"
#include "app/messagehandler.h"
#include "tests/support/privatefolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <optional>
#include <unistd.h>

namespace {

QStringList logLines()
{
    QFile file(logFile());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split('\n')
                                          : QStringList();
}

QStringList temporaryFolders()
{
    return QDir(QDir::tempPath()).entryList({"sendrivo-*"}, QDir::Dirs);
}

constexpr QFile::Permissions others = QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther;

/// The program, ended by a signal as a logout or Ctrl-C does.
struct Run : QProcess
{
    Run() { start(SENDRIVO_PROGRAM, QStringList()); }
    ~Run() override
    {
        kill();
        waitForFinished();
    }

    [[nodiscard]] bool end(int signal)
    {
        ::kill(static_cast<pid_t>(processId()), signal);
        return waitForFinished(10000) && exitStatus() == NormalExit && exitCode() == 0;
    }
};

} // namespace

/// The program itself: its log, its folders, how it ends.
class TestStartup : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setApplicationName("sendrivo"); }
    void init()
    {
        QVERIFY(QDir(dataFolder()).removeRecursively());
        temporary.emplace(QDir::homePath() + "/XXXXXX");
        qputenv("TMPDIR", QFile::encodeName(temporary->path()));
    }

    void messages_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("logged");
        QTest::newRow("debug") << int(QtDebugMsg) << "%1 %2"
                               << "Debug: %1 %2\n";
        QTest::newRow("own line end") << int(QtWarningMsg) << "e\n"
                                      << "Warning: e\n\n";
        QTest::newRow("not Latin") << int(QtCriticalMsg) << QString(QChar(0x448))
                                   << "Critical: " + QString(QChar(0x448)) + '\n';
        QTest::newRow("information") << int(QtInfoMsg) << "d"
                                     << "\n";
    }
    void messages()
    {
        QFETCH(int, type);
        QFETCH(QString, message);
        QFETCH(QString, logged);
        QVERIFY(QDir().mkpath(dataFolder()));
        customMessageHandler(QtMsgType(type), {}, message);
        customMessageHandler(QtMsgType(type), {}, message);
        QFile log(logFile());
        QVERIFY(log.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(log.readAll()), logged + logged);
        QVERIFY(QDir(dataFolder()).removeRecursively()); // from now on messages are lost
        customMessageHandler(QtMsgType(type), {}, message);
        QVERIFY(!QFile::exists(logFile()));
    }

    /// Each run has a log and a private temporary folder of its own, and ends in good order.
    void run_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("terminated") << SIGTERM;
        QTest::newRow("interrupted") << SIGINT;
        QTest::newRow("session ended") << SIGHUP;
    }
    void run()
    {
        QFETCH(int, signal);
        Run first;
        QTRY_COMPARE(logLines().value(0),
                     QStringLiteral("Debug: Current path: \"%1\" ").arg(QDir::currentPath()));
        QCOMPARE(logLines().value(1), QString());
        Run second;
        QTRY_COMPARE(temporaryFolders().size(), 2);
        for (const QString &name : temporaryFolders()) {
            const QString folder = QDir::temp().filePath(name);
            QCOMPARE(QFileInfo(folder).permissions() & others, 0);
            // A cleaner may remove the folder, and the window makes it again.
            if (signal == SIGHUP)
                QVERIFY(QDir(folder).removeRecursively() && QDir().mkpath(folder + "/x"));
        }
        QCOMPARE(QFileInfo(dataFolder()).permissions() & others, 0);
        QCOMPARE(QFileInfo(logFile()).permissions() & others, 0);
        QVERIFY(first.end(signal));
        QCOMPARE(first.readAllStandardError(), QByteArray());
        QTRY_COMPARE(temporaryFolders().size(), 1);
        QVERIFY(second.end(signal));
        QCOMPARE(temporaryFolders().size(), 0);
        QCOMPARE(logLines().filter("Current path:").size(), 1);
    }

    /// What a killed window leaves goes when the next one starts, and nothing else.
    void nextStart_data()
    {
        QTest::addColumn<bool>("stays");
        QTest::newRow("killed") << false;
        QTest::newRow("killed, its tool goes on") << false;
        QTest::newRow("living") << true;
        QTest::newRow("of another user") << true;
    }
    void nextStart()
    {
        QFETCH(bool, stays);
        const QByteArray row = QTest::currentDataTag();
        Run window;
        QTRY_COMPARE(temporaryFolders().size(), 1);
        const QString name = temporaryFolders().constFirst();
        const QString folder = QDir::temp().filePath(name);
        const QString mark = folder + "/.sendrivo-window";
        QTRY_VERIFY(QFileInfo::exists(mark));
        const QTemporaryDir elsewhere(QDir::homePath() + "/XXXXXX");
        QVERIFY(QDir(folder).mkpath("inner"));
        QVERIFY(QFile::copy(mark, elsewhere.filePath("text")));
        QVERIFY(QFile::link(elsewhere.path(), folder + "/inner/link"));
        if (row != "living") {
            window.kill();
            QVERIFY(window.waitForFinished());
        }
        if (row == "of another user" && ::chown(QFile::encodeName(folder), 65534, 65534) != 0)
            QSKIP("Only root can make a folder of another user.");
        QProcess tool;
        if (row == "killed, its tool goes on") {
            tool.start("sh", {"-c", "while : >\"$0/$((n += 1))\"; do :; done", folder});
            QTRY_VERIFY(QFileInfo::exists(folder + "/100"));
        }
        Run next;
        const auto foldersOfNext = [&name] {
            QStringList names = temporaryFolders();
            names.removeAll(name);
            return names.size();
        };
        QTRY_COMPARE(foldersOfNext(), 1);
        QCOMPARE(QFileInfo::exists(folder), stays);
        QCOMPARE(QFileInfo::exists(folder + "/inner/link"), stays);
        QVERIFY(QFileInfo::exists(elsewhere.filePath("text")));
        QVERIFY(tool.state() == QProcess::NotRunning || tool.waitForFinished());
    }

    void noDisplay_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("window") << SENDRIVO_PROGRAM;
        QTest::newRow("options") << SENDRIVO_OPTIONS_PROGRAM;
    }
    void noDisplay()
    {
        QFETCH(QString, program);
        QProcess run;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "xcb");
        environment.insert("DISPLAY", "nowhere:7");
        run.setProcessEnvironment(environment);
        run.start(program, QStringList());
        QVERIFY(run.waitForFinished());
        QCOMPARE(run.exitStatus(), QProcess::NormalExit);
        QCOMPARE(run.exitCode(), 1);
        const QByteArray complaint = run.readAllStandardError();
        QVERIFY2(complaint.startsWith(QFileInfo(program).fileName().toUtf8() + ": no usable"),
                 complaint);
        QCOMPARE(complaint.count('\n'), 1);
        QCOMPARE(QDir::temp().entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    }

private:
    std::optional<QTemporaryDir> temporary; // each test's own
};

SENDRIVO_TEST_MAIN(TestStartup, QCoreApplication)
#include "tst_startup.moc"
