// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/markedpdf.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfobjects.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

/// Page ranges written by the real stavekit.
class TestMerge : public QObject
{
    Q_OBJECT

private slots:
    void keepsItsPagesOnly_data();
    void keepsItsPagesOnly();
    void pagesLookTheSame_data();
    void pagesLookTheSame();
    void linksLeadToTheSamePages_data();
    void linksLeadToTheSamePages();
    void sharedResourcesAreWrittenOnce();
    void sharedResourcesAreKeptInDoubt_data();
    void sharedResourcesAreKeptInDoubt();
    void repeatedPagesAreCopies();
    void encryption_data();
    void encryption();
    void damagedStreamsAreCopiedAsTheyAre();
    void endsOnHostileFiles_data();
    void endsOnHostileFiles();
};

namespace {

using Assembling = pdfobjects::Assembling;

/// A page with a signed signature field, and a radio button whose field says which one is on.
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
    const int root = file.reserve();
    const int page = file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 300 200] /Annots " +
                              PdfBuilder::refs({signature, button}) + " >>");
    file.define(root, "<< /Type /Pages /Kids [" + PdfBuilder::ref(page) + "] /Count 1 >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) +
                               " /AcroForm << /SigFlags 3 /Fields " +
                               PdfBuilder::refs({signature, group}) + " >> >>"));
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
QByteArray sharing(const QByteArray &contents, const QByteArray &contentsEntries = QByteArray())
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
    const int other = file.addStream("leaked", "/Subtype /Image /Width 2 /Height 1 "
                                               "/BitsPerComponent 8 /ColorSpace /DeviceRGB");
    file.define(resources,
                "<< /Font << /F1 " + ref(file.addHelvetica()) + " /Look " +
                    ref(file.addHelvetica()) + " /T3 " + ref(type3) + " >> /XObject << /B#23ad " +
                    ref(bare) + " /Inner " + ref(inner) + " /Fill " + ref(fill) + " /Glyph " +
                    ref(shape) + " /Mask " + ref(maskShape) + " /Im#41 " + ref(image) + " /Other " +
                    ref(other) + " >> /Pattern << /Pat " + ref(pattern) +
                    " /Sh << /PatternType 2 /Shading << /ShadingType 2 /ColorSpace /Tint "
                    "/Coords [0 0 1 1] /Function << /FunctionType 2 /Domain [0 1] /C0 [0 0 0] "
                    "/C1 [1 1 1] /N 1 >> >> >> >> /ExtGState << /GS " +
                    ref(state) +
                    " >> /ColorSpace << /Tint [/CalRGB << /WhitePoint [1 1 1] >>] "
                    "/Ink [/Separation /A /DeviceGray << /FunctionType 2 /Domain [0 1] /N 1 >>] "
                    "/Own [/Indexed /DeviceRGB 1 <FF00FF00FFFF>] "
                    "/DefaultGray [/CalGray << /WhitePoint [0.9 1 1] /Gamma 5 >>] >> >>");
    const int widget = file.add("<< /Type /Annot /Subtype /Stamp /F 4 /Rect [200 100 290 190] /AP "
                                "<< /N " +
                                ref(look) + " >> >>");
    const int page = file.add("<< /Type /Page /Parent " + ref(root) + " /Resources " +
                              ref(resources) + " /Annots [" + ref(widget) + "] /Contents " +
                              ref(file.addStream(contents, contentsEntries)) + " >>");
    const int second =
        file.add("<< /Type /Page /Parent " + ref(root) + " /Resources " + ref(resources) +
                 " /Contents " + ref(file.addStream("/Other Do")) + " >>");
    file.define(root, "<< /Type /Pages /Kids " + PdfBuilder::refs({page, second}) +
                          " /Count 2 /MediaBox [0 0 300 200] >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + ref(root) + " >>"));
}

const QByteArray usingEverything =
    "0.5 g 10 120 40 40 re f /B#23ad Do q 40 0 0 20 100 10 cm /ImA Do Q /Pattern cs /Pat scn "
    "100 50 80 60 re f /Sh scn BT /T3 30 Tf 20 80 Td (a) Tj ET /GS gs 0 0 1 rg 0 0 300 200 re f";

/// One page, with entries of its own and for the catalog, and further objects from number 5 on.
QByteArray onePage(const QByteArray &catalogEntries, const QByteArray &pageEntries,
                   const QByteArrayList &objects)
{
    PdfBuilder file;
    const int root = file.add("<< /Type /Pages /Kids [2 0 R] /Count 1 >>");
    file.add("<< /Type /Page /Parent 1 0 R /MediaBox [0 0 9 9] " + pageEntries + " >>");
    const int catalog =
        file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + ' ' + catalogEntries + ">>");
    file.add("[2 0 R /Fit]");
    for (const QByteArray &object : objects)
        file.add(object);
    return file.bytes(catalog);
}

/// count objects from number 5 on, each "PREFIX n 0 R SUFFIX" with n the number of the next.
QByteArrayList chain(const QByteArray &prefix, const QByteArray &suffix, int count)
{
    QByteArrayList objects;
    for (int i = 0; i < count; ++i)
        objects.append("<< " + prefix + PdfBuilder::ref(6 + i) + ' ' + suffix + " >>");
    return objects;
}

/// Three pages; the link of page 1 is the given one, in which "PAGE2" stands for page 2.
QByteArray linked(QByteArray link)
{
    PdfBuilder file;
    const int root = file.reserve();
    const QList<int> pages = {file.reserve(), file.reserve(), file.reserve()};
    link.replace("PAGE2", PdfBuilder::ref(pages[1]));
    const int annotation =
        file.add("<< /Type /Annot /Subtype /Link /Rect [9 9 90 20] " + link + " >>");
    for (const int page : pages)
        file.define(page, "<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 300 200] /Annots [" +
                              (page == pages[0] ? PdfBuilder::ref(annotation) : QByteArray()) +
                              "] >>");
    file.define(root, "<< /Type /Pages /Kids " + PdfBuilder::refs(pages) + " /Count 3 >>");
    const QByteArray destination = '[' + PdfBuilder::ref(pages[1]) + " /Fit]";
    return file.bytes(file.add(
        "<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " /Dests << /old " + destination +
        " >> /Names << /Dests << /Names [(new) << /D " + destination + " >>] >> >> >>"));
}

} // namespace

void TestMerge::keepsItsPagesOnly_data()
{
    QTest::addColumn<QString>("ranges");
    QTest::addColumn<QString>("pages");
    QTest::addColumn<QString>("labels");
    const auto row = [](const char *name, const char *ranges, const char *pages,
                        const char *labels) {
        QTest::newRow(name) << QString(ranges) << QString(pages) << QString(labels);
    };
    row("first page", "1", "1", "label1i");
    row("page in the middle", "3", "3", "label3iii");
    row("range", "2-4", "234", "label2ii label3iii label4iv");
    row("another order", "5 1-2", "512", "label5v label1i label2ii");
    row("all", "1-5", "12345", "label1i label2ii label3iii label4iv label5v");
}

void TestMerge::keepsItsPagesOnly()
{
    QFETCH(QString, ranges);
    QFETCH(QString, pages);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    QFETCH(QString, labels);
    writeFile(input, MarkedPdf(5).bytes());
    QCOMPARE(pdfreader::complaints(input), QString());
    const ToolResult result = mergePages(input, ranges, output);
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.exitCode, 0);

    QStringList texts;
    for (const QChar page : pages)
        texts.append(QStringLiteral("text") + page);
    QCOMPARE(pdfreader::pageTexts(output), texts);
    QCOMPARE(pdfreader::complaints(output), QString());
    QCOMPARE(pdfobjects::complaints(output), QString());

    const QByteArray contents = pdfobjects::decoded(output);
    const auto holds = [&contents](const QByteArray &marker, bool isExpected) {
        const bool isThere = contents.contains(marker);
        return isThere == isExpected ? QByteArray() : (isThere ? "leaks " : "loses ") + marker;
    };
    for (int page = 1; page <= 5; ++page) {
        const QByteArray digit = QByteArray::number(page);
        const int next = page % 5 + 1;
        const bool isKept = pages.contains(QString(digit));
        const bool hasTarget = isKept && pages.contains(QString::number(next));
        for (const char *marker :
             {"text",  "look",     "note", "popup",     "value",  "attach", "file",  "xmp",
              "(tag",  "(formtag", "(id",  "(entry",    "(label", "/font",  "image", "(layer",
              "(view", "(part",    "(f",   "associate", "(step",  "(back",  "(ink"})
            QCOMPARE(holds(marker + digit, isKept), QByteArray());
        QCOMPARE(holds("link" + digit, hasTarget), QByteArray());
        QCOMPARE(holds("(dest" + QByteArray::number(next), hasTarget), QByteArray());
        const bool hasChapter = isKept || pages.contains(QString::number((page - 1) / 2 * 2 + 1)) ||
                                pages.contains(QString::number((page - 1) / 2 * 2 + 2));
        QCOMPARE(holds("(chapter" + QByteArray::number((page + 1) / 2), hasChapter), QByteArray());
        for (const char *marker : {"bead", "thumb", "piece"})
            QCOMPARE(holds(marker + digit, false), QByteArray());
    }
    for (const char *entry :
         {"(The title)", "(Mill)", "D:20200101", "xmpmeta", "(group)", "/DA", "(common)", "/Lang",
          "/DisplayDocTitle", "profile", "/Marked", "/RoleMap", "/Wipe", "/ClassMap", "/UserUnit",
          "/Dur", "/TrimBox", "/Default", "/Q 2"})
        QCOMPARE(holds(entry, true), QByteArray());
    QCOMPARE(holds("/PrintPageRange", false), QByteArray());
    // It tells the text of all pages.
    QCOMPARE(holds("(everything)", pages.size() == 5), QByteArray());
    QCOMPARE(pdfobjects::labels(output), labels.split(QLatin1Char(' ')));
    QCOMPARE(pdfobjects::structureFaults(output), QString());
    for (const char *list : {"/CO", "/OFF"})
        QCOMPARE(pdfobjects::listLength(output, list), pages.size());
    for (int page = 0; page < pages.size(); ++page)
        QCOMPARE(pdfreader::renderPage(output, page),
                 pdfreader::renderPage(input, pages.mid(page, 1).toInt() - 1));
}

void TestMerge::pagesLookTheSame_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("media box and resources from the root") << inheriting("", "");
    QTest::newRow("rotation from a node") << inheriting("/Rotate 90", "");
    QTest::newRow("rotation overridden") << inheriting("/Rotate 90", "/Rotate 180");
    QTest::newRow("crop box from a node") << inheriting("/CropBox [10 10 150 150]", "");
    QTest::newRow("media box from a node") << inheriting("/MediaBox [0 0 120 120]", "");
    QTest::newRow("user unit") << inheriting("", "/UserUnit 1.5");
    QTest::newRow("all attributes by reference") << allByReference();
    QTest::newRow("signature and form field") << withFields();
    QTest::newRow("hidden layer stays hidden") << layered();
    QTest::newRow("shared resources used in every way") << sharing(usingEverything);
}

void TestMerge::pagesLookTheSame()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, bytes);
    QCOMPARE(mergePages(input, "1", output).exitCode, 0);
    const QImage expected = pdfreader::renderPage(input, 0);
    QVERIFY(!expected.isNull());
    QCOMPARE(pdfreader::renderPage(output, 0), expected);
    QCOMPARE(pdfobjects::complaints(output), QString());
}

void TestMerge::linksLeadToTheSamePages_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<QString>("ranges");
    QTest::addColumn<QString>("targets");
    const QByteArray direct = "/Dest [PAGE2 /Fit]";
    QTest::newRow("both kept") << direct << "1-3"
                               << "1 -1 -1";
    QTest::newRow("order changed") << direct << "2 3 1"
                                   << "-1 -1 0";
    QTest::newRow("target left out") << direct << "1 3"
                                     << "-1 -1";
    QTest::newRow("source left out") << direct << "2-3"
                                     << "-1 -1";
    QTest::newRow("action") << QByteArray("/A << /S /GoTo /D [PAGE2 /XYZ 0 0 null] >>") << "1-2"
                            << "1 -1";
    QTest::newRow("action, target left out")
        << QByteArray("/A << /S /GoTo /D [PAGE2 /Fit] >>") << "1"
        << "-1";
    QTest::newRow("named by a string") << QByteArray("/Dest (new)") << "1-2"
                                       << "1 -1";
    QTest::newRow("named by a name") << QByteArray("/Dest /old") << "1-2"
                                     << "1 -1";
    QTest::newRow("named, target left out") << QByteArray("/Dest (new)") << "1 3"
                                            << "-1 -1";
    QTest::newRow("page index") << QByteArray("/Dest [1 /Fit]") << "1-2"
                                << "1 -1";
    QTest::newRow("page index out of bounds") << QByteArray("/Dest [99 /Fit]") << "1-2"
                                              << "-1 -1";
    QTest::newRow("unknown name") << QByteArray("/Dest (other)") << "1-2"
                                  << "-1 -1";
}

void TestMerge::linksLeadToTheSamePages()
{
    QFETCH(QByteArray, link);
    QFETCH(QString, ranges);
    QFETCH(QString, targets);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, linked(link));
    QCOMPARE(mergePages(input, ranges, output).exitCode, 0);
    QCOMPARE(pdfobjects::linkTargets(output), targets);
    QCOMPARE(pdfobjects::complaints(output), QString());
}

void TestMerge::sharedResourcesAreWrittenOnce()
{
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, MarkedPdf(5).bytes());
    QCOMPARE(mergePages(input, "1-5", output).exitCode, 0);
    QCOMPARE(pdfobjects::count(output, "/Name /font"), 5);
    // One dictionary stands directly in the page tree, the other is an object of its own.
    QCOMPARE(pdfobjects::count(output, "/ProcSet"), 2);
}

void TestMerge::sharedResourcesAreKeptInDoubt_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<bool>("isWhole");
    QTest::newRow("readable contents") << QByteArray() << false;
    QTest::newRow("unknown filter") << QByteArray("/Filter /Unknown") << true;
    QTest::newRow("damaged data") << QByteArray("/Filter /FlateDecode") << true;
}

void TestMerge::sharedResourcesAreKeptInDoubt()
{
    QFETCH(QByteArray, entries);
    QFETCH(bool, isWhole);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, sharing(usingEverything, entries));
    QCOMPARE(mergePages(input, "1", output).exitCode, 0);
    QCOMPARE(readFile(output).contains("leaked"), isWhole);
    if (isWhole)
        return;
    const QByteArray written = pdfobjects::decoded(output);
    for (const char *entry :
         {"/F1 ", "/Look ", "/T3 ", "/Inner ", "/Fill ", "/Glyph ", "/Mask ", "/ImA ", "/Pat ",
          "/Sh ", "/GS ", "/Own [", "/Tint [", "/Ink [", "/DefaultGray "})
        QVERIFY2(written.count(entry) > written.count(entry + QByteArray("Do")), entry);
}

void TestMerge::repeatedPagesAreCopies()
{
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, MarkedPdf(3).bytes());
    QCOMPARE(mergePages(input, "2 1-3 2", output).exitCode, 0);
    QCOMPARE(pdfreader::pageTexts(output),
             QStringList({"text2", "text1", "text2", "text3", "text2"}));
    QCOMPARE(pdfobjects::count(output, "/Type /Page "), 5);
    QCOMPARE(pdfobjects::count(output, "/T (f2)"), 1);
    QCOMPARE(pdfobjects::complaints(output), QString());
}

void TestMerge::encryption_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("exitCode");
    const QByteArray plain = simplePdf({showText(20, 100, "secret")});
    QTest::newRow("opens without password, may be assembled")
        << pdfobjects::encrypted(plain, "", "owner", Assembling::Allowed) << 0;
    QTest::newRow("opens without password, must not be assembled")
        << pdfobjects::encrypted(plain, "", "owner", Assembling::Forbidden) << 6;
    QTest::newRow("length of the key left out")
        << pdfobjects::encrypted(plain, "", "owner", Assembling::Allowed, 4)
               .replace("/Length 128", "/Fength 128")
        << 0;
    QTest::newRow("empty owner password")
        << pdfobjects::encrypted(plain, "", "", Assembling::Forbidden) << 0;
    QTest::newRow("needs a password")
        << pdfobjects::encrypted(plain, "user", "owner", Assembling::Allowed) << 6;
}

void TestMerge::encryption()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, exitCode);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, bytes);
    const ToolResult result = mergePages(input, "1", output);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.errors.count('\n'), exitCode == 0 ? 0 : 1);
    QCOMPARE(QFile::exists(output), exitCode == 0);
    if (exitCode == 0) {
        QCOMPARE(pdfreader::pageTexts(output), QStringList("secret"));
        QVERIFY(pdfobjects::isEncryptedWith(output, Assembling::Allowed) ||
                pdfobjects::isEncryptedWith(output, Assembling::Forbidden));
        QCOMPARE(pdfobjects::isEncryptedWith(output, Assembling::Allowed),
                 pdfobjects::isEncryptedWith(input, Assembling::Allowed));
    }
}

void TestMerge::damagedStreamsAreCopiedAsTheyAre()
{
    PdfBuilder file;
    const int root = file.reserve();
    const QByteArray broken = "this is not deflated";
    const int contents = file.addStream(broken, "/Filter /FlateDecode");
    const int page =
        file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                 " /MediaBox [0 0 9 9] /Contents " + PdfBuilder::ref(contents) + " >>");
    file.define(root, "<< /Type /Pages /Kids [" + PdfBuilder::ref(page) + "] /Count 1 >>");
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input,
              file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " >>")));
    QCOMPARE(mergePages(input, "1", output).exitCode, 0);
    QVERIFY(readFile(output).contains(broken));
}

void TestMerge::endsOnHostileFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const int depth = 30000;
    QTest::newRow("deep array") << onePage(
        "", "/Trans " + QByteArray(depth, '[') + QByteArray(depth, ']'), {});
    QTest::newRow("deep chain of objects") << onePage("", "/Trans 5 0 R", chain("/A ", "", depth));
    QTest::newRow("deep form") << onePage("", "/Annots [5 0 R]",
                                          chain("/Subtype /Widget /T (a) /Parent ", "", depth));
    QTest::newRow("deep outline") << onePage("/Outlines 5 0 R", "",
                                             chain("/Title (a) /First ", "/Dest 4 0 R", depth));
    QTest::newRow("outline in a loop")
        << onePage("/Outlines 5 0 R", "",
                   {"<< /First 6 0 R >>", "<< /Dest 4 0 R /First 6 0 R /Next 7 0 R >>",
                    "<< /Dest 4 0 R /First 5 0 R /Next 6 0 R >>"});
    QTest::newRow("structure in a loop")
        << onePage("/StructTreeRoot 5 0 R", "/StructParents 0",
                   {"<< /K 6 0 R /ParentTree 8 0 R >>", "<< /S /P /P 7 0 R /K [6 0 R 7 0 R 0] >>",
                    "<< /S /P /P 6 0 R /K 6 0 R >>", "<< /Kids [8 0 R 9 0 R] >>",
                    "<< /Nums [0 [6 0 R 1 0 R 2 0 R 3 0 R]] >>"});
    QTest::newRow("names in a loop")
        << onePage("/Names << /Dests 5 0 R >>", "/Annots [<< /Subtype /Link /Dest (a) >>]",
                   {"<< /Kids [5 0 R] >>"});
    QTest::newRow("page as everything")
        << onePage("/AcroForm 2 0 R /Outlines 2 0 R /StructTreeRoot 2 0 R /PageLabels 2 0 R",
                   "/Resources 2 0 R /Contents 2 0 R /StructParents 2 0 R /Annots [2 0 R 1 0 R << "
                   "/Subtype /Widget /Parent 2 0 R >> << /Subtype /Widget /Parent 1 0 R >>]",
                   {});
    // Thirty kilobytes that are thirty megabytes of names.
    const QByteArray packed = qCompress(QByteArray("/A ").repeated(10000000), 9).mid(4);
    QTest::newRow("contents far larger than the file") << onePage(
        "", "/Resources << /Font 5 0 R >> /Contents 6 0 R",
        {"<< >>", "<< /Filter /FlateDecode /Length " + QByteArray::number(packed.size()) +
                      " >>\nstream\n" + packed + "\nendstream"});
    QTest::newRow("version beyond all bounds")
        << onePage("", "", {}).replace("%PDF-1.7", "%PDF-" + QByteArray(40, '5') + ".7");
    QByteArray huge = onePage("", "", {});
    QTest::newRow("four billion objects") << huge.replace("/Size 5", "/Size 4294967295");
}

void TestMerge::endsOnHostileFiles()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, bytes);
    const ToolResult result = mergePages(input, "1", output);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(pdfreader::pageCount(output), 1);
}

SENDRIVO_TEST_MAIN(TestMerge, QCoreApplication)
#include "tst_merge.moc"
