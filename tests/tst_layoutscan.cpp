// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/layoutscan.h"
#include "tests/support/privatefolders.h"

#include <QCoreApplication>
#include <QTest>

/// Reading fragments from lines of page layout files.
class TestLayoutScan : public QObject
{
    Q_OBJECT

private slots:
    void styleValue_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("value");

        const auto left = [](const char *name, const char *line, int value) {
            QTest::newRow(name) << "left" << line << value;
        };
        left("ended by semicolon", "left:215;", 215);
        left("ended by quote", "left:215\"", 215);
        left("ended by end of line", "left:215", 215);
        left("any one separator", "left=215;", 215);
        left("unit", "left:215px;", 0);
        left("fraction", "left:100.0;", 0);
        left("negative", "left:-3;", 0);
        left("zero", "left:0;", 0);
        left("empty", "left:;", 0);
        left("blanks around", "left: 7 ;", 7);
        left("leading zeros", "left:007;", 7);
        left("largest", "left:2147483647;", 2147483647);
        left("beyond 32 bits", "left:2147483648;", 0);
        left("missing", "top:3;", 0);
        left("empty line", "", 0);
        left("key at the very end", "left", 0);
        left("separator at the very end", "left:", 0);
        left("other case", "LEFT:3;", 0);
        left("first occurrence inside a word", "text-align:left;left:40;", 0);
        QTest::newRow("other key") << "height"
                                   << "left:1;top:2;width:3;height:4\"" << 4;
    }
    void styleValue()
    {
        QFETCH(QString, key);
        QFETCH(QString, line);
        QTEST(::styleValue(key, line), "value");
    }

    void fragmentText_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("text");

        QTest::newRow("plain") << "<span style=\"left:1\">ABC</span>"
                               << "ABC";
        QTest::newRow("entities stay") << "<span>A &amp; B &lt;</span>"
                                       << "A &amp; B &lt;";
        QTest::newRow("blanks stay") << "<span> A </span>"
                                     << " A ";
        QTest::newRow("innermost element") << "<p><b>A</b>B</span>"
                                           << "B";
        QTest::newRow("first end counts") << "<span>A</span><span>B</span>"
                                          << "A";
        QTest::newRow("no end") << "<span>ABC"
                                << "";
        QTest::newRow("other case of the end") << "<span>ABC</SPAN>"
                                               << "";
        QTest::newRow("no bracket: first character lost") << "ABC</span>"
                                                          << "BC";
        QTest::newRow("bracket first") << ">ABC</span>"
                                       << "ABC";
        QTest::newRow("end first") << "</span>ABC"
                                   << "";
        QTest::newRow("empty text") << "<span></span>"
                                    << "";
    }
    void fragmentText()
    {
        QFETCH(QString, line);
        QTEST(::fragmentText(line), "text");
    }

    void wholeFragment()
    {
        const Subtext fragment =
            parseFragment(u"<span style=\"left:100;top:200;width:50;height:12\">ABC</span>");
        QCOMPARE(fragment.left, 100);
        QCOMPARE(fragment.top, 200);
        QCOMPARE(fragment.width, 50);
        QCOMPARE(fragment.height, 12);
        QCOMPARE(fragment.text, QStringLiteral("ABC"));
    }

    void textAtPosition_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QString>("text");

        const QString match = QStringLiteral("<span style=\"left:100;top:200;\">A</span>\n");
        const QString second = QStringLiteral("<span style=\"left:100;top:200;\">B</span>\n");
        const QString below = QStringLiteral("<span style=\"left:100;top:201;\">C</span>\n");
        const QString beside = QStringLiteral("<span style=\"left:99;top:200;\">D</span>\n");
        QTest::newRow("match") << below + match << "A";
        QTest::newRow("earlier line wins") << second + match << "B";
        QTest::newRow("no tolerance") << below + beside << " ";
        QTest::newRow("empty page") << ""
                                    << " ";
        QTest::newRow("last scanned line")
            << QString(QLatin1Char('x')).append('\n').repeated(maxScannedLines - 1) + match << "A";
        QTest::newRow("beyond the last scanned line")
            << QString(QLatin1Char('x')).append('\n').repeated(maxScannedLines) + match << " ";
        QTest::newRow("empty lines are no lines")
            << QString(20000, QLatin1Char('\n')) + match << "A";
    }
    void textAtPosition()
    {
        QFETCH(QString, layout);
        QTEST(::textAtPosition(layoutFileLines(layout), 100, 200), "text");
    }
};

SENDRIVO_TEST_MAIN(TestLayoutScan, QCoreApplication)
#include "tst_layoutscan.moc"
