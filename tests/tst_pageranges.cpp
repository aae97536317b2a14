// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/pageranges.h"
#include "pdf/error.h"
#include "tests/support/privatefolders.h"

#include <QTest>

class TestPageRanges : public QObject
{
    Q_OBJECT

private slots:
    void parse_data();
    void parse();
};

void TestPageRanges::parse_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QList<int>>("pages"); // empty: refused

    const auto row = [](const char *name, const char *text, const QList<int> &pages) {
        QTest::newRow(name) << QByteArray(text) << pages;
    };
    row("single page", "3", {3});
    row("first page", "1", {1});
    row("last page", "12", {12});
    row("range", "9-12", {9, 10, 11, 12});
    row("range of one page", "4-4", {4});
    row("leading zeros", "007", {7});
    row("empty", "", {});
    row("page zero", "0", {});
    row("range from zero", "0-3", {});
    row("reversed", "5-3", {});
    row("beyond the end", "13", {});
    row("range beyond the end", "10-13", {});
    row("beyond int", "99999999999", {});
    row("letters", "a-b", {});
    row("number and letters", "3x", {});
    row("open at the end", "3-", {});
    row("open at the start", "-3", {});
    row("negative end", "3--5", {});
    row("plus sign", "+3", {});
    row("blank before", " 3", {});
    row("three parts", "1-2-3", {});
}

void TestPageRanges::parse()
{
    QFETCH(QByteArray, text);
    QFETCH(QList<int>, pages);
    QList<int> found;
    try {
        for (const int index : pdf::pageIndexes({pdf::parsePageRange(text.toStdString(), 12)}))
            found.append(index + 1);
    } catch (const pdf::Error &error) {
        QCOMPARE(error.exitCode(), pdf::ExitCode::Usage);
        QVERIFY(QByteArray(error.what()).contains(text));
    }
    QCOMPARE(found, pages);
}

SENDRIVO_TEST_MAIN(TestPageRanges, QCoreApplication)
#include "tst_pageranges.moc"
