// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/messagehandler.h"
#include "tests/support/privatefolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>

/// What of Qt's messages ends up in the log.
class TestMessageHandler : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QFile::remove(logFile());
        QVERIFY(QDir().mkpath(dataFolder()));
    }

    void lines_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("logged");

        QTest::newRow("debug") << int(QtDebugMsg) << "a"
                               << "Debug: a\n";
        QTest::newRow("warning") << int(QtWarningMsg) << "b"
                                 << "Warning: b\n";
        QTest::newRow("critical") << int(QtCriticalMsg) << "c"
                                  << "Critical: c\n";
        QTest::newRow("information") << int(QtInfoMsg) << "d"
                                     << "\n";
        QTest::newRow("own line end") << int(QtWarningMsg) << "e\n"
                                      << "Warning: e\n\n";
        QTest::newRow("placeholder") << int(QtDebugMsg) << "%1 %2"
                                     << "Debug: %1 %2\n";
        QTest::newRow("not Latin")
            << int(QtDebugMsg) << QString::fromUtf8("счёт") << QString::fromUtf8("Debug: счёт\n");
    }
    void lines()
    {
        QFETCH(int, type);
        QFETCH(QString, message);
        customMessageHandler(QtMsgType(type), {}, message);
        customMessageHandler(QtMsgType(type), {}, message);
        QFile log(logFile());
        QVERIFY(log.open(QIODevice::ReadOnly));
        QFETCH(QString, logged);
        QCOMPARE(QString::fromUtf8(log.readAll()), logged + logged);
    }

    void withoutFolderMessagesAreLost()
    {
        QVERIFY(QDir(dataFolder()).removeRecursively());
        customMessageHandler(QtWarningMsg, {}, "lost");
        QVERIFY(!QFile::exists(logFile()));
    }
};

SENDRIVO_TEST_MAIN(TestMessageHandler, QCoreApplication)
#include "tst_messagehandler.moc"
