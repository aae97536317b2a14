// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/filesize.h"
#include "split/outputname.h"
#include "split/toolcommands.h"
#include "tests/support/privatefolders.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

/// Names of output documents, command lines of the tools and what is read back from them.
class TestOutputs : public QObject
{
    Q_OBJECT

private slots:
    void name_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("base");
        QTest::addColumn<int>("method");
        QTest::addColumn<QString>("name");

        const auto row = [](const char *name, const QString &text, const QString &expected,
                            int method = 0, const QString &base = "report") {
            QTest::newRow(name) << text << base << method << expected;
        };
        row("by change", "Acme Ltd", "4 Acme Ltd report 9-12.pdf");
        row("grouped", "Acme Ltd", "4 Acme Ltd report.pdf", 2);
        row("no text", " ", "4   report 9-12.pdf");
        row("slash", "01/02/2020", "4 01-02-2020 report 9-12.pdf");
        row("other characters stay", "a:b\\c*?\"<>|", "4 a:b\\c*?\"<>| report 9-12.pdf");
        row("control characters",
            QString::fromUtf8("a\tb\x7f\x1f\u0085\u009b\u200b\u2028\u202e\u2066c"),
            "4 a b        c report 9-12.pdf");
        row("letters without characters", QString::fromUtf8("A\U000F0001\U00100001\U000FFFFD"),
            QString::fromUtf8("4 A\uFFFD\uFFFD report 9-12.pdf"));
        row("as long as fits", QString(237, 'x'), "4 " + QString(237, 'x') + " report 9-12.pdf");
        row("one byte too long", QString(238, 'x'), "4 " + QString(237, 'x') + " report 9-12.pdf");
        row("two-byte letters", QString(200, QChar(0x430)),
            "4 " + QString(118, QChar(0x430)) + " report 9-12.pdf");
        const QString flags = QString::fromUtf8("x🇩🇪").repeated(40); // 9 bytes each
        row("flags are not cut apart", flags,
            "4 " + QString::fromUtf8("x🇩🇪").repeated(26) + "x report 9-12.pdf");
        const QString accents = QString::fromUtf8("e\u0301").repeated(100); // 3 bytes each
        row("accents stay on their letters", accents,
            "4 " + QString::fromUtf8("e\u0301").repeated(79) + " report 9-12.pdf");
        row("no room for the text", "text", "4  " + QString(243, 'b') + " 9-12.pdf", 0,
            QString(243, 'b'));
        row("nor for the base name", "text", "4  " + QString(81, QChar(0x66f8)) + " 9-12.pdf", 0,
            QString(82, QChar(0x66f8)));
    }
    void name()
    {
        QFETCH(QString, text);
        QFETCH(QString, base);
        QFETCH(int, method);
        QTEST(outputFileName({4, text, base, "9-12"}, method, 255), "name");
    }

    void path()
    {
        const QString path = outputPath("/out/", {1, "A", "in", "1"}, 0);
        QCOMPARE(path, QStringLiteral("/out//in/1 A in 1.pdf"));
        const QString copy = outputPath("/out/", {1, QString(300, 'A'), "in", "1", 12}, 0);
        QVERIFY(copy.endsWith("A in 1 (12).pdf"));
        QCOMPARE(QFileInfo(copy).fileName().size(), 255);
    }

    void commands_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("file");

        QTest::newRow("quote inside") << "/opt/a\"b"
                                      << "/data/say \"hi\" now.pdf";
        QTest::newRow("quotes at the ends") << "/opt/x\""
                                            << "\"in.pdf\"";
        QTest::newRow("quotes in a row") << "/opt/\"\""
                                         << "/a\"\"\"\"b.pdf";
        QTest::newRow("other shell characters") << "/opt/$HOME"
                                                << "/a'b\\c;&*\tx\ny.pdf";
        QTest::newRow("not Latin") << QString::fromUtf8("/опт") << QString::fromUtf8("/数据.pdf");
    }
    void commands()
    {
        QFETCH(QString, folder);
        QFETCH(QString, file);
        const QString tool = folder + "/stavekit";
        QCOMPARE(QProcess::splitCommand(pageCountCommand(folder, file, folder + "/fileinfo.txt")),
                 QStringList({tool, file, "-getinfo", "-outfile", folder + "/fileinfo.txt"}));
        QCOMPARE(QProcess::splitCommand(layoutCommand(folder, "/t p", file)),
                 QStringList({folder + "/quillrend", "-htmlformat", file, "/t p/split.xml"}));
        QCOMPARE(QProcess::splitCommand(previewCommand(folder, file, 12, "/t p/text.xml")),
                 QStringList({folder + "/quillrend", "-htmlformat", "-f", "12", "-l", "12", file,
                              "/t p/text.xml"}));
        QCOMPARE(QProcess::splitCommand(mergeCommand(folder, file, "1-2 7", file)),
                 QStringList({tool, file, "-merge", "1-2", "7", "-outfile", file}));
    }

    void plainCommandsAreConcatenations()
    {
        QCOMPARE(
            pageCountCommand("/app", "/in.pdf", "/app/fileinfo.txt"),
            QStringLiteral(R"("/app/stavekit" "/in.pdf" -getinfo -outfile "/app/fileinfo.txt")"));
        QCOMPARE(layoutCommand("/app", "/tmp", "/in.pdf"),
                 QStringLiteral(R"("/app/quillrend" -htmlformat "/in.pdf" "/tmp/split.xml")"));
        QCOMPARE(mergeCommand("/app", "/in.pdf", "3-5", "/o.pdf"),
                 QStringLiteral(R"("/app/stavekit" "/in.pdf" -merge 3-5 -outfile "/o.pdf")"));
    }

    void layoutFiles()
    {
        QCOMPARE(layoutFile("/tmp", 7), QStringLiteral("/tmp/split_pg_0007.htm"));
        QCOMPARE(layoutFile("/tmp", 12345), QStringLiteral("/tmp/split_pg_12345.htm"));
    }

    void pageCount_data()
    {
        QTest::addColumn<QString>("info");
        QTest::addColumn<QString>("digits");

        QTest::newRow("followed by text") << "NumberOfPages: 27 pages"
                                          << "27";
        QTest::newRow("not readable") << "NumberOfPages: \nError: 12"
                                      << "";
        QTest::newRow("no key, digits where the scan begins") << "12345678901234567"
                                                              << "567";
        QTest::newRow("short") << "x"
                               << "";
    }
    void pageCount()
    {
        QFETCH(QString, info);
        QTEST(pageCountDigits(info), "digits");
    }

    void fileSize_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("text");

        QTest::newRow("empty") << qint64(0) << "";
        QTest::newRow("half a mebibyte") << qint64(524288) << "       524.288 KB";
        QTest::newRow("last in KB") << qint64(1048576) << "      1048.576 KB";
        QTest::newRow("first in MB") << qint64(1048577) << "         1.049 MB";
        QTest::newRow("2 GiB wraps to nothing") << (qint64(1) << 31) << "";
        QTest::newRow("4 GiB + 1000 wraps") << (qint64(1) << 32) + 1000 << "         1.000 KB";
    }
    void fileSize()
    {
        QFETCH(qint64, bytes);
        QTEST(fileSizeText(bytes), "text");
    }
};

SENDRIVO_TEST_MAIN(TestOutputs, QCoreApplication)
#include "tst_outputs.moc"
