// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/markedpdf.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfobjects.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QTest>

/// Pages taken out by the real stavekit look as before, with no more resources than they use.
class TestMergeLooks : public QObject
{
    Q_OBJECT

private slots:
    void pagesLookTheSame_data();
    void pagesLookTheSame();
    void sharedResourcesAreWrittenOnce();
    void sharedResourcesAreKeptInDoubt_data();
    void sharedResourcesAreKeptInDoubt();
};

namespace {

/// A page with signed signature fields, one of which shows nothing, a radio button whose field says
/// which one is on, and a text that the reader draws.
QByteArray withFields()
{
    PdfBuilder file;
    const auto look = [&file](const QByteArray &color) {
        return PdfBuilder::ref(file.addStream(color + " rg 0 0 40 40 re f",
                                              "/Type /XObject /Subtype /Form /BBox [0 0 40 40]"));
    };
    const int value = file.add("<< /Type /Sig /Filter /Adobe.PPKLite /Contents <00> >>");
    const int signature =
        file.add("<< /Type /Annot /Subtype /Widget /FT /Sig /T (signed) /F 4 /Rect [20 20 60 60] "
                 "/V " +
                 PdfBuilder::ref(value) + " /AP << /N " + look("1 0 0") + " >> >>");
    const int group = file.reserve();
    const int button =
        file.add("<< /Type /Annot /Subtype /Widget /F 4 /Rect [80 20 120 60] /AS /On /Parent " +
                 PdfBuilder::ref(group) + " /AP << /N << /On " + look("0 1 0") + " /Off " +
                 look("0 0 1") + " >> >> >>");
    file.define(group, "<< /FT /Btn /Ff 49152 /T (choice) /V /On /Kids [" +
                           PdfBuilder::ref(button) + "] >>");
    const int invisible = file.add("<< /Subtype /Widget /FT /Sig /T (hidden) /F 4 /Rect [20 80 60 "
                                   "120] /V " +
                                   PdfBuilder::ref(value) + " >>");
    const int text = file.add("<< /Subtype /Widget /FT /Tx /T (text) /V (typed) /F 4 /Rect [80 80 "
                              "120 120] /DA (/Helv 9 Tf) >>");
    const int root = file.reserve();
    const int page = file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 300 200] /Annots " +
                              PdfBuilder::refs({signature, button, invisible, text}) + " >>");
    file.define(root, "<< /Type /Pages /Kids [" + PdfBuilder::ref(page) + "] /Count 1 >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) +
                               " /AcroForm << /SigFlags 3 /Fields " +
                               PdfBuilder::refs({signature, group, invisible, text}) + " >> >>"));
}

/// A damaged file, in which one page inherits resources in two ways.
QByteArray belowTwoNodes()
{
    PdfBuilder file;
    const QByteArray font = PdfBuilder::ref(file.addHelvetica());
    file.addStream(showText(40, 100, "inherits"));
    const QByteArray node = "<< /Type /Pages /Parent 6 0 R /Kids [5 0 R] /Count 1 /Resources << "
                            "/Font << /F1 " +
                            font + " >> >> >>";
    file.add(node);
    file.add(node);
    file.add("<< /Type /Page /Parent 3 0 R /Contents 2 0 R /MediaBox [0 0 300 200] >>");
    file.add("<< /Type /Pages /Kids [3 0 R 4 0 R] /Count 2 >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages 6 0 R >>"));
}

/// Page trees that hand attributes down, one page each.
QByteArray inheriting(const QByteArray &nodeEntries, const QByteArray &pageEntries)
{
    PdfBuilder file;
    const int node = file.reserve();
    const int root = file.reserve();
    const int contents = file.addStream(showText(40, 100, "inherits") + "0.5 g 20 20 50 30 re f");
    const int font = file.addHelvetica();
    const int page = file.add("<< /Type /Page /Parent " + PdfBuilder::ref(node) + " /Contents " +
                              PdfBuilder::ref(contents) + ' ' + pageEntries + " >>");
    file.define(node, "<< /Type /Pages /Parent " + PdfBuilder::ref(root) + " /Kids [" +
                          PdfBuilder::ref(page) + "] /Count 1 " + nodeEntries + " >>");
    file.define(root, "<< /Type /Pages /Kids [" + PdfBuilder::ref(node) +
                          "] /Count 1 /MediaBox [0 0 250 350] /Resources << /Font << /F1 " +
                          PdfBuilder::ref(font) + " >> >> >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " >>"));
}

/// A page whose every attribute is an object of its own.
QByteArray allByReference()
{
    PdfBuilder file;
    const auto ref = [&file](const QByteArray &body) { return PdfBuilder::ref(file.add(body)); };
    const QByteArray font = PdfBuilder::ref(file.addHelvetica());
    const int first = file.addStream("q /Half gs 1 0 0 rg 20 20 90 60 re f");
    const int second = file.addStream("Q " + showText(40, 100, "by reference"));
    const int root = file.reserve();
    const QByteArray resources =
        ref("<< /Font " + ref("<< /F1 " + font + " >>") + " /ExtGState " +
            ref("<< /Half " + ref("<< /ca " + ref("0.5") + " >>") + " >>") + " >>");
    const QByteArray page = ref("<< /Type /Page /Parent " + PdfBuilder::ref(root) + " /MediaBox " +
                                ref("[0 0 300 " + ref("200") + "]") + " /CropBox " +
                                ref("[10 10 200 150]") + " /Rotate " + ref("90") + " /Group " +
                                ref("<< /S /Transparency /I true >>") + " /Resources " + resources +
                                " /Contents " + ref(PdfBuilder::refs({first, second})) + " >>");
    file.define(root, "<< /Type /Pages /Kids " + ref("[" + page + "]") + " /Count 1 >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " >>"));
}

/// A page with one layer that is off and one that is on.
QByteArray layered()
{
    PdfBuilder file;
    const int off = file.add("<< /Type /OCG /Name (off) >>");
    const int on = file.add("<< /Type /OCG /Name (on) >>");
    const int root = file.reserve();
    const int font = file.addHelvetica();
    const int contents = file.addStream("/OC /Off BDC " + showText(20, 100, "hidden") +
                                        " EMC /OC /On BDC " + showText(20, 50, "shown") + " EMC");
    const int page = file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 300 200] /Contents " + PdfBuilder::ref(contents) +
                              " /Resources << /Font << /F1 " + PdfBuilder::ref(font) +
                              " >> /Properties << /Off " + PdfBuilder::ref(off) + " /On " +
                              PdfBuilder::ref(on) + " >> >> >>");
    file.define(root, "<< /Type /Pages /Kids [" + PdfBuilder::ref(page) + "] /Count 1 >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) +
                               " /OCProperties << /OCGs " + PdfBuilder::refs({off, on}) +
                               " /D << /Order " + PdfBuilder::refs({off, on}) + " /OFF [" +
                               PdfBuilder::ref(off) + "] >> >> >>"));
}

/// Two pages with one dictionary of resources, whose entries page 1 uses in every way that does not
/// name them in the page's own contents. Page 2 has an image of its own in it.
QByteArray sharing(const QByteArray &contents, const QByteArray &contentsEntries = QByteArray(),
                   bool isDirect = false)
{
    PdfBuilder file;
    const auto ref = [](int number) { return PdfBuilder::ref(number); };
    const int root = file.reserve();
    const int resources = file.reserve();
    const QByteArray box = " /BBox [0 0 100 100] ";
    const QByteArray form = "/Type /XObject /Subtype /Form" + box;
    const int bare = file.addStream(showText(20, 20, "bare") + "/Inner Do", form);
    const int inner = file.addStream("1 0 0 rg 0 0 9 9 re f", form);
    const int pattern = file.addStream("/Fill Do", "/PatternType 1 /PaintType 1 /TilingType 1" +
                                                       box + "/XStep 20 /YStep 20");
    const int fill = file.addStream("0 1 0 rg 0 0 12 12 re f", form);
    const int glyph = file.addStream("1000 0 d0 /Glyph Do");
    const int shape = file.addStream("0 0 700 700 re f", "/Subtype /Form /BBox [0 0 1000 1000]");
    const int type3 = file.add("<< /Type /Font /Subtype /Type3 /FontBBox [0 0 1000 1000] "
                               "/FontMatrix [.001 0 0 .001 0 0] /FirstChar 97 /LastChar 97 "
                               "/Widths [1000] /Encoding << /Differences [97 /a] >> /CharProcs "
                               "<< /a " +
                               ref(glyph) + " >> >>");
    const int mask = file.addStream("/Mask Do", form + " /Group << /S /Transparency /CS "
                                                       "/DeviceGray >>");
    const int maskShape = file.addStream("1 g 0 0 60 60 re f", form);
    const int state = file.add("<< /SMask << /S /Luminosity /G " + ref(mask) + " >> >>");
    const int image = file.addStream("\x10\xF0", "/Type /XObject /Subtype /Image /Width 2 /Height "
                                                 "1 /BitsPerComponent 8 /ColorSpace /Own");
    const int look = file.addStream(showText(2, 20, "look").replace("/F1", "/Look"),
                                    form + " /Resources " + ref(resources));
    // Some readers look around a form for what its own resources lack.
    const int lacking = file.addStream("/Inner Do /Around Do", form +
                                                                   "/Resources << /XObject << "
                                                                   "/Inner " +
                                                                   ref(inner) + " >> >>");
    const int other = file.addStream("leaked", "/Subtype /Image /Width 2 /Height 1 "
                                               "/BitsPerComponent 8 /ColorSpace /DeviceRGB");
    const QByteArray dictionary =
        "<< /Font << /F1 " + ref(file.addHelvetica()) + " /Look " + ref(file.addHelvetica()) +
        " /Typed " + ref(file.addHelvetica()) + " /T3 " + ref(type3) + " >> /XObject << /B#23ad " +
        ref(bare) + " /Inner " + ref(inner) + " /Fill " + ref(fill) + " /Glyph " + ref(shape) +
        " /Mask " + ref(maskShape) + " /Im#41 " + ref(image) + " /Lacking " + ref(lacking) +
        " /Around " + ref(inner) + " /Other " + ref(other) + " >> /Pattern << /Pat " +
        ref(pattern) +
        " /Sh << /PatternType 2 /Shading << /ShadingType 2 /ColorSpace /Tint "
        "/Coords [0 0 1 1] /Function << /FunctionType 2 /Domain [0 1] /C0 [0 0 0] "
        "/C1 [1 1 1] /N 1 >> >> >> >> /ExtGState << /GS " +
        ref(state) +
        " >> /ColorSpace << /Tint [/CalRGB << /WhitePoint [1 1 1] >>] "
        "/Ink [/Separation /A /DeviceGray << /FunctionType 2 /Domain [0 1] /N 1 >>] "
        "/Own [/Indexed /DeviceRGB 1 <FF00FF00FFFF>] "
        "/DefaultGray [/CalGray << /WhitePoint [0.9 1 1] /Gamma 5 >>] >> >>";
    file.define(resources, dictionary);
    const QByteArray listed = isDirect ? dictionary : ref(resources);
    const int widget =
        file.add("<< /Type /Annot /Subtype /Stamp /F 4 /Rect [200 100 290 190] /AP "
                 "<< /N " +
                 ref(look) + " >> /DA (/Typed\\n9 Tf) /DR " + ref(resources) + " >>");
    const int page = file.add("<< /Type /Page /Parent " + ref(root) + " /Resources " + listed +
                              " /Annots [" + ref(widget) + "] /Contents " +
                              ref(file.addStream(contents, contentsEntries)) + " >>");
    const int second =
        file.add("<< /Type /Page /Parent " + ref(root) + " /Resources " + ref(resources) +
                 " /Contents " + ref(file.addStream("/Other Do")) + " >>");
    file.define(root, "<< /Type /Pages /Kids " + PdfBuilder::refs({page, second}) +
                          " /Count 2 /MediaBox [0 0 300 200] >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + ref(root) + " >>"));
}

const QByteArray usingEverything =
    "0.5 g 10 120 40 40 re f /B#23ad Do /Lacking Do q 40 0 0 20 100 10 cm /ImA Do Q /Pattern cs "
    "/Pat scn "
    "100 50 80 60 re f /Sh scn BT /T3 30 Tf 20 80 Td (a) Tj ET /GS gs 0 0 1 rg 0 0 300 200 re f";

} // namespace

void TestMergeLooks::pagesLookTheSame_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("pages");
    const auto row = [](const char *name, const QByteArray &bytes,
                        const QStringList &pages = {"1"}) {
        QTest::newRow(name) << bytes << pages;
    };
    row("media box and resources from the root", inheriting("", ""));
    row("rotation from a node", inheriting("/Rotate 90", ""));
    row("rotation overridden", inheriting("/Rotate 90", "/Rotate 180"));
    row("crop box from a node", inheriting("/CropBox [10 10 150 150]", ""));
    row("media box from a node", inheriting("/MediaBox [0 0 120 120]", ""));
    row("user unit", inheriting("", "/UserUnit 1.5"));
    row("all attributes by reference", allByReference());
    row("signature and form field", withFields(), {"1", "1"});
    row("hidden layer stays hidden", layered());
    row("shared resources used in every way", sharing(usingEverything));
    row("page below two nodes", belowTwoNodes(), {"1", "2"});
}

void TestMergeLooks::pagesLookTheSame()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, pages);
    const MergeRun run(bytes, pages.join(QLatin1Char(' ')));
    QCOMPARE(run.result.exitCode, 0);
    for (int i = 0; i < pages.size(); ++i) {
        const QImage expected = pdfreader::renderPage(run.input, pages[i].toInt() - 1);
        QVERIFY(!expected.isNull());
        QCOMPARE(pdfreader::renderPage(run.output, i), expected);
    }
    QCOMPARE(pdfobjects::complaints(run.output), QString());
}

void TestMergeLooks::sharedResourcesAreWrittenOnce()
{
    const MergeRun run(MarkedPdf(5).bytes(), "1-5");
    QCOMPARE(run.result.exitCode, 0);
    QCOMPARE(pdfobjects::count(run.output, "/Name /font"), 5);
    // One dictionary stands directly in the page tree, the other is an object of its own.
    QCOMPARE(pdfobjects::count(run.output, "/ProcSet"), 2);
}

void TestMergeLooks::sharedResourcesAreKeptInDoubt_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<bool>("isWhole");
    QTest::newRow("readable contents") << QByteArray() << false;
    QTest::newRow("dictionary in the page itself") << QByteArray(" ") << false;
    QTest::newRow("unknown filter") << QByteArray("/Filter /Unknown") << true;
    QTest::newRow("damaged data") << QByteArray("/Filter /FlateDecode") << true;
}

void TestMergeLooks::sharedResourcesAreKeptInDoubt()
{
    QFETCH(QByteArray, entries);
    QFETCH(bool, isWhole);
    const MergeRun run(sharing(usingEverything, entries, entries == " "), "1");
    QCOMPARE(run.result.exitCode, 0);
    QCOMPARE(readFile(run.output).contains("leaked"), isWhole);
    if (isWhole)
        return;
    const QByteArray written = pdfobjects::decoded(run.output);
    for (const char *entry :
         {"/F1 ", "/Look ", "/Typed ", "/Around ", "/T3 ", "/Inner ", "/Fill ", "/Glyph ", "/Mask ",
          "/ImA ", "/Pat ", "/Sh ", "/GS ", "/Own [", "/Tint [", "/Ink [", "/DefaultGray "})
        QVERIFY2(written.count(entry) > written.count(entry + QByteArray("Do")), entry);
}

SENDRIVO_TEST_MAIN(TestMergeLooks, QCoreApplication)
#include "tst_mergelooks.moc"
