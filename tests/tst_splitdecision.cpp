// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/layoutscan.h"
#include "split/pagerange.h"
#include "split/splitdecision.h"
#include "tests/support/privatefolders.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QTest>

namespace {

/// One page a character; a dot is a page without text.
QStringList pages(const QString &letters)
{
    QStringList texts;
    for (const QChar letter : letters)
        texts.append(letter == '.' ? QStringLiteral(" ") : QString(letter));
    return texts;
}

} // namespace

/// From the lines of layout files to documents.
class TestSplitDecision : public QObject
{
    Q_OBJECT

private slots:
    void styleValues_data()
    {
        QTest::addColumn<int>("value");
        const std::pair<const char *, int> rows[] = {
            {"left:215;", 215},     {"left=215\"", 215}, {"left:215px;", 0},
            {"left:100.0;", 0},     {"left:-3;", 0},     {"left: 007 ;", 7},
            {"left:", 0},           {"left", 0},         {"left:2147483647", INT_MAX},
            {"left:2147483648", 0}, {"LEFT:3;", 0},      {"text-align:left;left:40;", 0}};
        for (const auto &[line, value] : rows)
            QTest::newRow(line) << value;
    }
    void styleValues() { QTEST(styleValue(u"left", QString(QTest::currentDataTag())), "value"); }

    void fragmentTexts_data()
    {
        QTest::addColumn<QString>("text");
        const std::pair<const char *, const char *> rows[] = {
            {"<span style=\"left:1\"> A &amp; B </span>", " A &amp; B "},
            {"<p><b>A</b>B</span><span>C</span>", "B"},
            {"<span>ABC</SPAN>", ""},
            {"ABC</span>", "BC"}, // without a bracket the first character is lost
            {"</span>ABC", ""}};
        for (const auto &[line, text] : rows)
            QTest::newRow(line) << text;
    }
    void fragmentTexts() { QTEST(fragmentText(QString(QTest::currentDataTag())), "text"); }

    void textsAtPosition_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QString>("text");
        const QString match = "<span style=\"left:100;top:200;\">A</span>\n";
        const QString second = "<span style=\"left:100;top:200;\">B</span>\n";
        const QString near = "<i style=\"left:100;top:201;\">C</span>\n<i left:99;top:200>D</span>";
        const QString lines = QString("x\n").repeated(maxScannedLines - 1);
        QTest::newRow("match") << near + '\n' + match << "A";
        QTest::newRow("earlier line wins") << second + match << "B";
        QTest::newRow("no tolerance") << near << " ";
        QTest::newRow("last scanned line") << lines + match << "A";
        QTest::newRow("beyond the last scanned line") << "x\n" + lines + match << " ";
        QTest::newRow("empty lines are no lines") << QString(20000, '\n') + match << "A";
    }
    void textsAtPosition()
    {
        QFETCH(QString, layout);
        QTEST(textAtPosition(layoutFileLines(layout), 100, 200), "text");
    }

    void decision_data()
    {
        QTest::addColumn<QString>("letters");
        QTest::addColumn<int>("method");
        QTest::addColumn<QString>("documents");
        const auto row = [](const char *letters, const char *byChange, const char *byPresence,
                            const char *grouped) {
            QTest::addRow("%s by change", letters) << letters << 0 << byChange;
            QTest::addRow("%s by presence", letters) << letters << 1 << byPresence;
            QTest::addRow("%s grouped", letters) << letters << 2 << grouped;
        };
        row("", "", "", "");
        row(".", "1= ", "1= ", "1= ");
        row("AABBB", "1-2=A|3-5=B", "1=A|2=A|3=B|4=B|5=B", "1-2=A|3-5=B");
        row("ABADB", "1=A|2=B|3=A|4=D|5=B", "1=A|2=B|3=A|4=D|5=B", "1 3=A|2 5=B|4=D");
        row("..A", "1-2= |3=A", "1-2= |3=A", "1-2= |3=A");
        row("aA", "1=a|2=A", "1=a|2=A", "1=a|2=A");
        row("A.AB..A.", "1-3=A|4-6=B|7-8=A", "1-2=A|3=A|4-6=B|7-8=A", "1-3 7-8=A|4-6=B");
        QTest::newRow("no such method") << "AB" << 3 << "";
    }
    void decision()
    {
        QFETCH(QString, letters);
        QFETCH(int, method);
        const SplitDecision decision = decideSplit(pages(letters), method);
        QCOMPARE(decision.rangeList.size(), decision.textList.size());
        QStringList documents;
        for (int k = 0; k < decision.rangeList.size(); ++k)
            documents.append(decision.rangeList[k] + '=' + decision.textList[k]);
        QTEST(documents.join('|'), "documents");
    }

    /// Whatever the texts are, no page is lost or doubled.
    void everyPageExactlyOnce()
    {
        QRandomGenerator random(20);
        for (int round = 0; round < 1500; ++round) {
            QStringList texts;
            for (int page = random.bounded(1, 40); page > 0; --page)
                texts.append(pages("..AAB").at(random.bounded(5)));
            const QStringList ranges = decideSplit(texts, round % 3).rangeList;
            QVERIFY2(areAllPagesOnce(ranges, texts.size()), qPrintable(texts.join('|')));
        }
    }
};

SENDRIVO_TEST_MAIN(TestSplitDecision, QCoreApplication)
#include "tst_splitdecision.moc"
