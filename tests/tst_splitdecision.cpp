// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

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
        texts.append(letter == QLatin1Char('.') ? QStringLiteral(" ") : QString(letter));
    return texts;
}

QList<int> pagesOf(const QString &ranges)
{
    QList<int> numbers;
    for (const QString &range : ranges.split(QLatin1Char(' '))) {
        const QStringList ends = range.split(QLatin1Char('-'));
        for (int page = ends.first().toInt(); page <= ends.last().toInt(); ++page)
            numbers.append(page);
    }
    return numbers;
}

} // namespace

/// Which pages become which documents.
class TestSplitDecision : public QObject
{
    Q_OBJECT

private slots:
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
        row("A", "1=A", "1=A", "1=A");
        row(".", "1= ", "1= ", "1= ");
        row("AABBB", "1-2=A|3-5=B", "1=A|2=A|3=B|4=B|5=B", "1-2=A|3-5=B");
        row("A.AB.", "1-3=A|4-5=B", "1-2=A|3=A|4-5=B", "1-3=A|4-5=B");
        row("ABADB", "1=A|2=B|3=A|4=D|5=B", "1=A|2=B|3=A|4=D|5=B", "1 3=A|2 5=B|4=D");
        row("..A", "1-2= |3=A", "1-2= |3=A", "1-2= |3=A");
        row("....", "1-4= ", "1-4= ", "1-4= ");
        row("aA", "1=a|2=A", "1=a|2=A", "1=a|2=A");
        row("A.B..A.", "1-2=A|3-5=B|6-7=A", "1-2=A|3-5=B|6-7=A", "1-2 6-7=A|3-5=B");
        QTest::newRow("no such method") << "AB" << 3 << "";
        QTest::newRow("nothing chosen") << "AB" << -1 << "";
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

    void trailingBlankIsAnotherText()
    {
        const QStringList texts = {QStringLiteral("A"), QStringLiteral("A ")};
        QCOMPARE(decideSplit(texts, 0).rangeList, QStringList({"1", "2"}));
    }

    /// Whatever the texts are, no page is lost, doubled or moved.
    void everyPageExactlyOnce()
    {
        QRandomGenerator random(20);
        for (int round = 0; round < 500; ++round) {
            QString letters;
            for (int page = random.bounded(1, 40); page > 0; --page)
                letters.append(QStringLiteral("..AAB").at(random.bounded(5)));
            QList<int> all;
            for (int page = 1; page <= letters.size(); ++page)
                all.append(page);
            for (int method = 0; method < 3; ++method) {
                QList<int> found;
                const SplitDecision decision = decideSplit(pages(letters), method);
                for (const QString &ranges : decision.rangeList) {
                    const QList<int> document = pagesOf(ranges);
                    QVERIFY(std::is_sorted(document.begin(), document.end()));
                    found += document;
                }
                if (method == 2)
                    std::sort(found.begin(), found.end());
                QCOMPARE(found, all);
            }
        }
    }

    void manyDocumentsStayQuick()
    {
        QStringList texts;
        for (int page = 0; page < 200000; ++page)
            texts.append(QString::number(page % 100000));
        QCOMPARE(decideSplit(texts, 2).rangeList.size(), 100000);
    }
};

SENDRIVO_TEST_MAIN(TestSplitDecision, QCoreApplication)
#include "tst_splitdecision.moc"
