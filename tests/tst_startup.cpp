// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/logfile.h"
#include "app/messagehandler.h"
#include "tests/support/privatefolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QTest>

#include <csignal>
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
    void init() { QVERIFY(QDir(dataFolder()).removeRecursively()); }

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
            const QFileInfo folder(QDir::temp().filePath(name));
            QCOMPARE(folder.permissions() & others, 0);
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
};

SENDRIVO_TEST_MAIN(TestStartup, QCoreApplication)
#include "tst_startup.moc"
