// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/markfile.h"
#include "tests/support/privatefolders.h"

#include <QFile>
#include <QTest>

class MarkFileTest : public QObject
{
    Q_OBJECT

private slots:
    void bytes_data();
    void bytes();
};

void MarkFileTest::bytes_data()
{
    QTest::addColumn<QStringList>("typed");
    QTest::addColumn<QStringList>("written");
    const QStringList plain = {"T", "A", "S", "K", "C", "P"};
    const QStringList odd = {"Report (final)", "\\", ")", "a\nb", "Äpfel", "日本"};
    const QStringList empty = {"", "", "", "", "", ""};
    QTest::newRow("each in its line") << plain << plain;
    QTest::newRow("nothing escaped") << odd << odd;
    QTest::newRow("empty") << empty << empty;
    QTest::newRow("placeholder in the title") << QStringList{"A%1", "B", "S", "K", "C", "P"}
                                              << QStringList{"AB", "S", "K", "C", "P", "%6"};
    QTest::newRow("later placeholders in the title")
        << QStringList{"%3 %6", "A", "S", "K", "C", "P"}
        << QStringList{"S P", "A", "S", "K", "C", "P"};
}

void MarkFileTest::bytes()
{
    QFETCH(const QStringList, typed);
    QFETCH(const QStringList, written);
    const char *const before[] = {"[ /Title (",       ")\n /Author (",   ") \n /Subject (",
                                  ") \n /Keywords (", ") \n /Creator (", ") \n /Producer ("};
    QByteArray expected;
    for (int field = 0; field < 6; ++field)
        expected += before[field] + written[field].toUtf8();
    expected += ") \n /DOCINFO pdfmark";
    QFile file("pdfinfo.txt");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(1000, '#')); // an older, longer file
    file.close();
    writeMarkFile({typed[0], typed[1], typed[2], typed[3], typed[4], typed[5]});
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), expected);
}

SENDRIVO_TEST_MAIN(MarkFileTest, QCoreApplication)
#include "tst_markfile.moc"
