// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/fragments.h"
#include "tests/support/pagefragments.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"

#include <QTest>

namespace {

/// A text whose pen starts x points right of and y points below the page's top left corner, 12
/// points high unless told.
struct Seen
{
    double x;
    double y;
    const char *text;
    int size = 12;
};

QString line(int left, int top, const QString &text)
{
    return QString("%1,%2 %3").arg(left).arg(top).arg(text);
}

QStringList expected(const QList<Seen> &all)
{
    constexpr double pixels = 96.0 / 72;
    QStringList lines;
    for (const Seen &seen : all)
        lines.append(line(pdf::layoutCoordinate(seen.x * pixels),
                          pdf::layoutCoordinate((seen.y - 0.8 * seen.size) * pixels), seen.text));
    lines.sort();
    return lines;
}

QStringList seenOn(const QByteArray &bytes)
{
    QStringList lines;
    for (const pdf::Fragment &fragment : fragmentsOf(bytes))
        lines.append(line(fragment.left, fragment.top, QString::fromStdString(fragment.text)));
    lines.sort();
    return lines;
}

struct Parts
{
    QByteArray contents;
    QByteArray form = ""; ///< contents of the form XObject /X
    QByteArray formEntries = "";
    QByteArray appearance = ""; ///< of an annotation at 100 50, 100 x 50 points
    QByteArray annotationEntries = "";
    QByteArray pageEntries = "";
};

/// A page of 300 x 200 points with Helvetica as /F1, the same at 24 points in the graphics state
/// /G, a form, an annotation, and a layer /L that is off.
QByteArray pageOf(const Parts &parts)
{
    PdfBuilder file;
    const QByteArray layer = PdfBuilder::ref(file.add("<< /Type /OCG /Name (off) >>"));
    const QByteArray font = PdfBuilder::ref(file.addHelvetica());
    const int form = file.reserve();
    const QByteArray resources =
        PdfBuilder::ref(file.add("<< /Font << /F1 " + font + " >> /ExtGState << /G << /Font [" +
                                 font + " 24] >> >> /XObject << /X " + PdfBuilder::ref(form) +
                                 " >> /Properties << /L " + layer + " >> >>"));
    file.define(form, "<< /Type /XObject /Subtype /Form /BBox [0 0 300 200] /Resources " +
                          resources + QByteArray(parts.formEntries).replace("LAYER", layer) +
                          " /Length " + QByteArray::number(parts.form.size()) + " >>\nstream\n" +
                          parts.form + "\nendstream");
    const int appearance =
        file.addStream(parts.appearance, "/Type /XObject /Subtype /Form /BBox [0 0 100 50] "
                                         "/Resources " +
                                             resources);
    const int annotation =
        file.add("<< /Type /Annot /Subtype /Stamp /Rect [100 50 200 100] /AP << /N " +
                 PdfBuilder::ref(appearance) + " >> " + parts.annotationEntries + " >>");
    const int contents = file.addStream(parts.contents);
    const int root = file.reserve();
    const int page = file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 300 200] /Contents " + PdfBuilder::ref(contents) +
                              " /Resources " + resources + " /Annots [" +
                              PdfBuilder::ref(annotation) + "] " + parts.pageEntries + " >>");
    file.define(root, "<< /Type /Pages /Kids [" + PdfBuilder::ref(page) + "] /Count 1 >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) +
                               " /OCProperties << /OCGs [" + layer + "] /D << /OFF [" + layer +
                               "] >> >> >>"));
}

QByteArray shown(const QByteArray &operators)
{
    return "BT /F1 12 Tf 30 100 Td " + operators + " ET ";
}

} // namespace

/// Where the operators of content streams lead the pen, and what each stream leaves to the next.
/// Helvetica advances by 0.556 em in "a" and "b".
class TestTextOperators : public QObject
{
    Q_OBJECT

private slots:
    void places_data();
    void places();
};

void TestTextOperators::places_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *name, const Parts &parts, const QList<Seen> &all) {
        QTest::newRow(name) << pageOf(parts) << expected(all);
    };
    constexpr double a = 0.556 * 12;
    row("Td twice", {shown("(a) Tj 50 -20 Td (b) Tj")}, {{30, 100, "a"}, {80, 120, "b"}});
    row("TD sets the leading", {shown("0 -20 TD (a) Tj T* (b) Tj")},
        {{30, 120, "a"}, {30, 140, "b"}});
    row("quote", {shown("15 TL (a) Tj (b) '")}, {{30, 100, "a"}, {30, 115, "b"}});
    row("double quote", {shown("15 TL 2 1 (a a) \" [-3000 (b)] TJ")},
        {{30, 115, "a a"}, {30 + 2 * a + 0.278 * 12 + 2 + 3 * 1 + 36, 115, "b"}});
    row("Tz", {shown("50 Tz (aaaa) Tj [-6000 (b)] TJ")},
        {{30, 100, "aaaa"}, {30 + 2 * a + 36, 100, "b"}});
    row("Ts", {shown("40 Ts (a) Tj")}, {{30, 60, "a"}});
    row("a text object begins at the origin",
        {"BT /F1 12 Tf 2 0 0 2 50 50 Tm ET BT 30 100 Td (a) Tj ET"}, {{30, 100, "a"}});
    row("font of a graphics state", {"BT /F1 12 Tf /G gs 30 100 Td (a) Tj ET"},
        {{30, 100, "a", 24}});
    row("Q goes back", {"q 1 0 0 1 50 20 cm BT /F1 12 Tf (a) Tj ET Q " + shown("(b) Tj")},
        {{50, 180, "a"}, {30, 100, "b"}});
    row("more Q than q", {"Q Q 1 0 0 1 50 20 cm Q " + shown("(a) Tj")}, {{80, 80, "a"}});
    row("no font", {"BT 30 100 Td (a) Tj ET " + shown("(b) Tj")}, {{30, 100, "b"}});
    row("text objects without an end", {"BT /F1 12 Tf 30 100 Td (a) Tj"}, {{30, 100, "a"}});
    row("form's matrix", {"1 0 0 1 5 5 cm /X Do", shown("(a) Tj"), "/Matrix [1 0 0 1 20 10]"},
        {{55, 85, "a"}});
    row("beside form's box",
        {"/X Do " + shown("260 20 Td (c) Tj"), shown("(a) Tj 280 0 Td (b) Tj"),
         "/Matrix [1 0 0 1 -20 0]"},
        {{10, 100, "a"}, {290, 80, "c"}});
    row("form leaves what it set",
        {"BT /F1 12 Tf 30 100 Td /X Do (a) Tj ET",
         "Q Q 1 0 0 1 50 50 cm BT /F1 24 Tf 9 9 Td q q /OC /L BDC /Span BMC"},
        {{30, 100, "a"}});
    row("form ends more than it begins",
        {"/Span << /ActualText (xy) >> BDC /X Do " + shown("7 0 Td (b) Tj") + "EMC",
         shown("(a) Tj") + "EMC"},
        {{30, 100, "xy"}});
    row("form within itself", {"/X Do", shown("(a) Tj") + "1 0 0 1 40 0 cm /X Do"},
        {{30, 100, "a"}});
    row("hidden layer",
        {"/OC /L BDC /Span BMC " + shown("(a) Tj") + "EMC /X Do EMC " + shown("0 -20 Td (b) Tj"),
         shown("(c) Tj")},
        {{30, 120, "b"}});
    row("text behind a hidden one", {shown("/OC /L BDC (aa) Tj [-3000 (a)] TJ EMC (b) Tj")},
        {{30 + 3 * a + 36, 100, "b"}});
    row("form on a hidden layer",
        {"/X Do " + shown("0 -20 Td (b) Tj"), shown("(c) Tj"), "/OC LAYER"}, {{30, 120, "b"}});
    row("annotation after contents that leave much open",
        {"1 0 0 1 50 50 cm q BT /OC /L BDC", "", "", "BT /F1 12 Tf 10 20 Td (n) Tj ET"},
        {{110, 130, "n"}});
    row("annotation after a damaged one's contents", {"(a", "", "", shown("-20 -80 Td (n) Tj")},
        {{110, 130, "n"}});
    row("upright annotation on a turned page",
        {"", "", "", "BT /F1 12 Tf 10 20 Td (n) Tj ET", "/F 16", "/Rotate 90"}, {{110, 130, "n"}});
    row("hidden annotation", {shown("(a) Tj"), "", "", "BT /F1 12 Tf 10 20 Td (n) Tj ET", "/F 2"},
        {{30, 100, "a"}});
}

void TestTextOperators::places()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, lines);
    QCOMPARE(seenOn(bytes), lines);
}

SENDRIVO_TEST_MAIN(TestTextOperators, QCoreApplication)
#include "tst_textoperators.moc"
