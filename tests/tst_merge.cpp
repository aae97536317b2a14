// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

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
    void repeatedPagesAreCopies();
    void encryption_data();
    void encryption();
    void damagedStreamsAreCopiedAsTheyAre();
};

namespace {

using Assembling = pdfobjects::Assembling;

/// A file of pages 1 to count. Everything a page can hold or lead to carries the page's own marker:
/// a word and the page's number ("text2"). All pages are reachable from each other through page
/// tree, links, fields, threads, structure and destinations.
class MarkedFile
{
public:
    explicit MarkedFile(int count) : root(file.reserve()), form(file.reserve()), font(addFont())
    {
        for (int i = 0; i < count; ++i)
            pages.append(file.reserve());
        for (int i = 1; i <= count; ++i)
            definePage(i);
        file.define(root, "<< /Type /Pages /Kids " + PdfBuilder::refs(pages) + " /Count " +
                              QByteArray::number(count) +
                              " /MediaBox [0 0 300 200] /Resources << /ProcSet [/PDF] /Font << "
                              "/F1 " +
                              PdfBuilder::ref(font) + " >> >> >>");
        file.define(form, "<< /T (group) /FT /Tx /Kids " + PdfBuilder::refs(widgets) + " >>");
    }

    [[nodiscard]] QByteArray bytes()
    {
        const int metadata = file.addStream("<x:xmpmeta/>", "/Type /Metadata /Subtype /XML");
        const int info = file.add("<< /Title (The title) >>");
        const int outline =
            file.add("<< /Type /Outlines /First " + PdfBuilder::ref(beads.last()) + " >>");
        const int catalog =
            file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " /Metadata " +
                     PdfBuilder::ref(metadata) + " /Outlines " + PdfBuilder::ref(outline) +
                     " /Lang (en) /AcroForm << /DA (/F1 0 Tf) /Fields [" + PdfBuilder::ref(form) +
                     "] /DR << /Font << /F1 " + PdfBuilder::ref(font) + " >> >> >> >>");
        return file.bytes(catalog, "/Info " + PdfBuilder::ref(info));
    }

private:
    int addFont() { return file.addHelvetica(); }

    void definePage(int number)
    {
        const QByteArray digit = QByteArray::number(number);
        const QByteArray self = PdfBuilder::ref(pages[number - 1]);
        const QByteArray next = PdfBuilder::ref(pages[number % pages.size()]);
        const int contents = file.addStream(showText(20, 100, "text" + digit));
        const int look =
            file.addStream("% look" + digit, "/Type /XObject /Subtype /Form /BBox [0 0 9 9]");
        const int stamp = file.add("<< /Type /Annot /Subtype /Stamp /Rect [9 9 20 20] /P " + self +
                                   " /Contents (note" + digit + ") /AP << /N " +
                                   PdfBuilder::ref(look) + " >> >>");
        const int link = file.add("<< /Subtype /Link /Rect [1 1 9 9] /Contents (link" + digit +
                                  ") /Dest [" + next + " /Fit] >>");
        const int bead = file.add("<< /T (bead" + digit + ") /P " + next + " >>");
        const int element =
            file.add("<< /S /P /Type /StructElem /Alt (tag" + digit + ") /Pg " + next + " >>");
        const int widget = file.add(
            "<< /Type /Annot /Subtype /Widget /Rect [30 9 60 20] /T (f" + digit + ") /V (value" +
            digit + ") /Parent " + PdfBuilder::ref(form) + " /P " + self + " /A << /S /Hide /T " +
            (widgets.isEmpty() ? "(none)" : PdfBuilder::ref(widgets.last())) + " >> >>");
        widgets.append(widget);
        beads.append(bead);
        file.define(pages[number - 1],
                    "<< /Type /Page /Parent " + PdfBuilder::ref(root) + " /Contents " +
                        PdfBuilder::ref(contents) + " /Annots " +
                        PdfBuilder::refs({stamp, link, widget}) + " /B [" + PdfBuilder::ref(bead) +
                        "] /StructParents " + digit + " /PieceInfo << /App << /Private (piece" +
                        digit + ") >> >> /Elements [" + PdfBuilder::ref(element) + "] >>");
    }

    PdfBuilder file;
    int root;
    int form;
    int font;
    QList<int> pages;
    QList<int> widgets;
    QList<int> beads;
};

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
    QTest::newRow("first page") << "1"
                                << "1";
    QTest::newRow("page in the middle") << "3"
                                        << "3";
    QTest::newRow("range") << "2-4"
                           << "234";
    QTest::newRow("ranges in another order") << "5 1-2"
                                             << "512";
    QTest::newRow("all") << "1-5"
                         << "12345";
}

void TestMerge::keepsItsPagesOnly()
{
    QFETCH(QString, ranges);
    QFETCH(QString, pages);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, MarkedFile(5).bytes());
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
    for (int page = 1; page <= 5; ++page) {
        const QByteArray digit = QByteArray::number(page);
        const bool isKept = pages.contains(QString(digit));
        for (const char *marker : {"text", "look", "note", "value"})
            QVERIFY2(contents.contains(marker + digit) == isKept, marker + digit);
        const bool hasTarget = isKept && pages.contains(QString::number(page % 5 + 1));
        QVERIFY2(contents.contains("link" + digit) == hasTarget, "link" + digit);
        for (const char *marker : {"bead", "tag", "piece"})
            QVERIFY2(!contents.contains(marker + digit), marker + digit);
    }
    for (const char *entry : {"(The title)", "xmpmeta", "(group)", "/DA", "/Lang"})
        QVERIFY2(contents.contains(entry), entry);
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
    writeFile(input, MarkedFile(5).bytes());
    QCOMPARE(mergePages(input, "1-5", output).exitCode, 0);
    QCOMPARE(pdfobjects::count(output, "/BaseFont"), 1);
    // The dictionary stands directly in the page tree; five pages refer to one copy.
    QCOMPARE(pdfobjects::count(output, "/ProcSet"), 1);
}

void TestMerge::repeatedPagesAreCopies()
{
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("out.pdf");
    writeFile(input, MarkedFile(3).bytes());
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

SENDRIVO_TEST_MAIN(TestMerge, QCoreApplication)
#include "tst_merge.moc"
