// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/fragments.h"
#include "pdf/layout/layoutfile.h"
#include "tests/support/pagefragments.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"

#include <QRect>
#include <QTest>

/// Where fragments are, and the files that say so. The page is 300 x 200 points, that is 400 x 267
/// pixels; Helvetica advances by 0.5 em in "a", 0.278 em in a blank.
class TestLayout : public QObject
{
    Q_OBJECT

private slots:
    void boxes_data();
    void boxes();
    void coordinatesAbsorbNoise_data();
    void coordinatesAbsorbNoise();
    void smallestCoordinateIsOne();
    void markup_data();
    void markup();
    void layoutFile();
};

void TestLayout::boxes_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QByteArray>("pageEntries");
    QTest::addColumn<QRect>("box");

    // 12 points are 16 pixels; "aaaa" is 2 em wide; the baseline at y = 100 points lies 133.3
    // pixels below the top, the box begins 0.8 em = 12.8 pixels above it.
    const QByteArray line = showText(30, 100, "aaaa");
    const auto row = [](const char *name, const QByteArray &contents, const QByteArray &entries,
                        const QRect &box) { QTest::newRow(name) << contents << entries << box; };
    row("upright", line, "", {40, 121, 36, 16});
    row("blank before", showText(30, 100, " aaaa"), "", {45, 121, 36, 16});
    row("crop box away from zero", line, "/CropBox [15 20 295 180]", {20, 94, 36, 16});
    row("crop box larger than the media box", line, "/CropBox [-50 -50 900 900]",
        {40, 121, 36, 16});
    row("user unit", line, "/UserUnit 2", {80, 241, 71, 32});
    row("page turned by 90", line, "/Rotate 90", {130, 40, 16, 36});
    row("page turned by 180", line, "/Rotate 180", {324, 130, 36, 16});
    row("page turned by 270", line, "/Rotate 270", {121, 324, 16, 36});
    // The line stands 15 points from the left and 80 from the upper edge of the crop box, which
    // the turn makes the right one; a point has 2.67 pixels.
    row("page turned, with user unit and crop box", line,
        "/Rotate 90 /UserUnit 2 /CropBox [15 20 295 180]", {207, 40, 32, 71});
    row("text turned by 90", "BT /F1 12 Tf 0 1 -1 0 100 30 Tm (aaaa) Tj ET", "",
        {121, 191, 16, 36});
    row("stretched", "BT /F1 12 Tf 200 Tz 30 100 Td (aaaa) Tj ET", "", {40, 121, 71, 16});
    row("scaled by the matrix", "BT /F1 1 Tf 12 0 0 12 30 100 Tm (aaaa) Tj ET", "",
        {40, 121, 36, 16});
    row("slanted by the matrix", "BT /F1 1 Tf 12 0 4 12 30 100 Tm (aaaa) Tj ET", "",
        {40, 121, 36, 16});
    row("at the left edge", showText(0, 100, "aaaa"), "", {1, 121, 36, 16});
}

void TestLayout::boxes()
{
    QFETCH(QByteArray, contents);
    QFETCH(QByteArray, pageEntries);
    QFETCH(QRect, box);
    const auto fragments = fragmentsOf(simplePdf({contents}, pageEntries));
    QCOMPARE(fragments.size(), std::size_t{1});
    const pdf::Fragment &found = fragments.front();
    QCOMPARE(QRect(found.left, found.top, found.width, found.height), box);
}

void TestLayout::coordinatesAbsorbNoise_data()
{
    QTest::addColumn<double>("step");   // of what producers place text on, in pixels
    QTest::addColumn<double>("origin"); // from where
    QTest::newRow("tenths of a point") << 2.0 / 15 << 0.0;
    QTest::newRow("quarters of a point") << 1.0 / 3 << 0.0;
    QTest::newRow("twelfths of a pixel") << 1.0 / 12 << 0.0;
    QTest::newRow("tenths of a point on A4") << 2.0 / 15 << 841.89 * 4 / 3;
    QTest::newRow("tenths of a point on Letter") << 2.0 / 15 << 1056.0;
}

void TestLayout::coordinatesAbsorbNoise()
{
    QFETCH(double, step);
    QFETCH(double, origin);
    for (int i = 0; i < 1000; ++i) {
        const double place = origin + i * step;
        for (const double noise : {-0.01, 0.01})
            QCOMPARE(pdf::layoutCoordinate(place + noise), pdf::layoutCoordinate(place));
    }
}

void TestLayout::smallestCoordinateIsOne()
{
    // Readers take 0 and less for "no value".
    for (const double pixels : {-1e30, -3.0, 0.0, 0.2, 1.4})
        QCOMPARE(pdf::layoutCoordinate(pixels), 1);
    QCOMPARE(pdf::layoutCoordinate(1.45), 2);
    QVERIFY(pdf::layoutCoordinate(1e30) > 0);
}

void TestLayout::markup_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("markup");
    const auto row = [](const char *text, const char *markup) {
        QTest::newRow(text) << QString(text) << QString(markup);
    };
    row("AT&T", "AT&T");
    row("A & B", "A & B");
    row("A&", "A&");
    row("<b>", "&lt;b&gt;");
    row("a</span>b", "a&lt;/span&gt;b");
    row("&lt;", "&amp;lt;");
    row("&unknown;", "&amp;unknown;");
    row("&copy 2026", "&amp;copy 2026");
    row("Q&ampere", "Q&amp;ampere");
    row("&#65", "&amp;#65");
    row("#&#", "#&#");
    row("a;b&c d;", "a;b&c d;");
}

void TestLayout::markup()
{
    QFETCH(QString, text);
    QFETCH(QString, markup);
    QCOMPARE(QString::fromStdString(pdf::markupText(text.toStdString())), markup);
}

void TestLayout::layoutFile()
{
    QCOMPARE(pdf::layoutFileText({}), std::string());
    QCOMPARE(pdf::layoutFileText({{64, 118, 93, 15, "INV-0042"}, {3, 4, 5, 6, "left:9;top"}}),
             std::string("<meta charset=\"utf-8\">"
                         "<span style=\"left:64;top:118;width:93;height:15\">INV-0042</span>\n"
                         "<span style=\"left:3;top:4;width:5;height:6\">left:9;top</span>\n"));
}

SENDRIVO_TEST_MAIN(TestLayout, QCoreApplication)
#include "tst_layout.moc"
