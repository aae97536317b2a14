// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/markedpdf.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfobjects.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QDir>
#include <QTest>

/// Page ranges written by the real stavekit.
class TestMerge : public QObject
{
    Q_OBJECT

private slots:
    void keepsItsPagesOnly_data();
    void keepsItsPagesOnly();
    void linksLeadToTheSamePages_data();
    void linksLeadToTheSamePages();
    void repeatedPagesAreCopies();
    void archivedDocumentsStayArchived_data();
    void archivedDocumentsStayArchived();
    void valuesStay_data();
    void valuesStay();
    void encryption_data();
    void encryption();
    void damagedStreamsAreCopiedAsTheyAre();
    void damageIsFoundMeanwhile();
    void cutOffContentsStay_data();
    void cutOffContentsStay();
    void widgetsShareTheirField_data();
    void widgetsShareTheirField();
};

namespace {

using Assembling = pdfobjects::Assembling;

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

const QByteArray archiveNote =
    "<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?><x:xmpmeta xmlns:x='adobe:ns:meta/'>"
    "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
    "xmlns:pdfaid='http://www.aiim.org/pdfa/ns/id/' pdfaid:part='2' pdfaid:conformance='B'/>"
    "</rdf:RDF></x:xmpmeta>\n<?xpacket end='w'?>";

/// Two pages with what PDF/A asks of a document around its contents.
QByteArray archived()
{
    PdfBuilder file;
    const int root = file.reserve();
    QList<int> pages;
    for (int i = 0; i < 2; ++i)
        pages.append(file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 99 99] /Contents " +
                              PdfBuilder::ref(file.addStream("0 g 9 9 30 30 re f")) + " >>"));
    file.define(root, "<< /Type /Pages /Kids " + PdfBuilder::refs(pages) + " /Count 2 >>");
    const int note = file.addStream(archiveNote, "/Type /Metadata /Subtype /XML");
    const int profile = file.addStream("the profile", "/N 3");
    const int catalog = file.add(
        "<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " /Metadata " +
        PdfBuilder::ref(note) +
        " /OutputIntents [<< /Type /OutputIntent /S /GTS_PDFA1 /OutputConditionIdentifier (sRGB) "
        "/DestOutputProfile " +
        PdfBuilder::ref(profile) + " >>] >>");
    return file.bytes(catalog, "/ID [<0123456789ABCDEF> <0123456789ABCDEF>]");
}

} // namespace

void TestMerge::keepsItsPagesOnly_data()
{
    QTest::addColumn<QString>("ranges");
    QTest::addColumn<QString>("pages");
    QTest::addColumn<QString>("labels");
    QTest::addColumn<QByteArray>("key"); // that the input lacks
    const auto row = [](const char *name, const char *ranges, const char *pages, const char *labels,
                        const char *key = "/Missing") {
        QTest::newRow(name) << QString(ranges) << QString(pages) << QString(labels)
                            << QByteArray(key);
    };
    row("first page", "1", "1", "label1i");
    row("page in the middle", "3", "3", "label3iii");
    row("range", "2-4", "234", "label2ii label3iii label4iv");
    row("another order", "5 1-2", "512", "label5v label1i label2ii");
    row("tags that nothing leads to", "2-3", "23", "label2ii label3iii", "/ParentTree");
    row("all", "1-5", "12345", "label1i label2ii label3iii label4iv label5v");
}

void TestMerge::keepsItsPagesOnly()
{
    QFETCH(QString, ranges);
    QFETCH(QString, pages);
    QFETCH(QString, labels);
    QFETCH(QByteArray, key);
    QByteArray bytes = MarkedPdf(5).bytes().replace(key, "/Other     ");
    // Only the tree would tell which page has the number.
    if (key == "/ParentTree")
        bytes.replace("/StructParents 1 ", "/StructParents 3 ");
    const MergeRun run(bytes, ranges);
    QCOMPARE(pdfreader::complaints(run.input), QString());
    QCOMPARE(run.result.errors, QByteArray());
    QCOMPARE(run.result.exitCode, 0);

    QStringList texts;
    for (const QChar page : pages)
        texts.append(QStringLiteral("text") + page);
    QCOMPARE(pdfreader::pageTexts(run.output), texts);
    QCOMPARE(pdfreader::complaints(run.output), QString());
    QCOMPARE(pdfobjects::complaints(run.output), QString());

    const QByteArray contents = pdfobjects::decoded(run.output);
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
              "(view", "(part",    "(f",   "associate", "(step",  "(then",  "(back", "(ink"})
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
    QCOMPARE(pdfobjects::labels(run.output), labels.split(QLatin1Char(' ')));
    QCOMPARE(pdfobjects::structureFaults(run.output), QString());
    for (const char *list : {"/CO", "/OFF"})
        QCOMPARE(pdfobjects::listLength(run.output, list), pages.size());
    for (int page = 0; page < pages.size(); ++page)
        QCOMPARE(pdfreader::renderPage(run.output, page),
                 pdfreader::renderPage(run.input, pages.mid(page, 1).toInt() - 1));
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
    QTest::newRow("named by a string among names") << QByteArray("/Dest (old)") << "1-2"
                                                   << "1 -1";
    QTest::newRow("named by a name among strings") << QByteArray("/Dest /new") << "1-2"
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
    const MergeRun run(linked(link), ranges);
    QCOMPARE(run.result.exitCode, 0);
    QCOMPARE(pdfobjects::linkTargets(run.output), targets);
    QCOMPARE(pdfobjects::complaints(run.output), QString());
}

void TestMerge::repeatedPagesAreCopies()
{
    const MergeRun run(MarkedPdf(3).bytes(), "2 1-3 2");
    QCOMPARE(run.result.exitCode, 0);
    QCOMPARE(pdfreader::pageTexts(run.output),
             QStringList({"text2", "text1", "text2", "text3", "text2"}));
    QCOMPARE(pdfobjects::count(run.output, "/Type /Page "), 5);
    QCOMPARE(pdfobjects::count(run.output, "/T (f2)"), 1);
    QCOMPARE(pdfobjects::count(run.output, "(popup2)"), 3);
    QCOMPARE(pdfobjects::complaints(run.output), QString());
}

void TestMerge::archivedDocumentsStayArchived_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::newRow("PDF/A-1") << QByteArray("%PDF-1.4\n");
    QTest::newRow("PDF/A-2") << QByteArray("%PDF-1.7\n");
}

void TestMerge::archivedDocumentsStayArchived()
{
    QFETCH(QByteArray, header);
    const MergeRun run(archived().replace(0, header.size(), header), "2");
    QCOMPARE(run.result.exitCode, 0);
    const QByteArray written = readFile(run.output);
    QVERIFY(written.startsWith(header + '%'));
    for (int i = 1; i <= 4; ++i)
        QVERIFY2(static_cast<unsigned char>(written[header.size() + i]) > 127, "binary comment");
    QVERIFY(written.contains(archiveNote));
    QVERIFY(written.contains("/ID ["));
    // Readers of PDF 1.4 know no objects inside streams.
    QCOMPARE(written.contains("/ObjStm"), header.contains("1.7"));
    QVERIFY(!written.contains("/Encrypt"));
    const QByteArray objects = pdfobjects::decoded(run.output);
    for (const char *part : {"the profile", "/S /GTS_PDFA1", "/DestOutputProfile", "(sRGB)"})
        QVERIFY2(objects.contains(part), part);
    QCOMPARE(pdfobjects::complaints(run.output), QString());
    QCOMPARE(pdfreader::complaints(run.output), pdfreader::complaints(run.input));
}

void TestMerge::valuesStay_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QByteArray>("read"); // as qpdf spells it
    const auto row = [](const char *name, const QByteArray &written, const QByteArray &read) {
        QTest::newRow(name) << written << read;
    };
    row("numbers", "[0 -7 +8 007 1.50 -.5 4. -0.0]", "[ 0 -7 8 7 1.50 -.5 4. -0.0 ]");
    row("number out of bounds", "99999999999999999999", "99999999999999999999.0");
    row("words", "[true false null]", "[ true false null ]");
    row("strings", "[(a(b)c) (a\\)b) (a\\\nb) (a\r\nb) ()]",
        "[ (a\\(b\\)c) (a\\)b) (ab) (a\\nb) () ]");
    row("hexadecimal strings", "[<4142> <41 4> <> <4>]", "[ (AB) (A@) () (@) ]");
    row("names", "[/A#20b /A /a.b-c_d*e]", "[ /A#20b /A /a.b-c_d*e ]");
    row("nested", "[[<</A<</B[1 2]>>>>]/C%comment\n(d)]",
        "[ [ << /A << /B [ 1 2 ] >> >> ] /C (d) ]");
    row("references", "[99 0 R 4 0 R(a)1 0]", "[ null 4 0 R (a) 1 0 ]");
}

/// Values of any kind, however they are written.
void TestMerge::valuesStay()
{
    QFETCH(QByteArray, written);
    QFETCH(QByteArray, read);
    const MergeRun run(simplePdf({"", ""}, "/LastModified " + written), "1");
    QCOMPARE(run.result.exitCode, 0);
    QVERIFY2(pdfobjects::decoded(run.output).contains("/LastModified " + read),
             pdfobjects::decoded(run.output));
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
    const MergeRun run(bytes, "1");
    QCOMPARE(run.result.exitCode, exitCode);
    QCOMPARE(run.result.errors.count('\n'), exitCode == 0 ? 0 : 1);
    QCOMPARE(QFile::exists(run.output), exitCode == 0);
    if (exitCode == 0) {
        QCOMPARE(pdfreader::pageTexts(run.output), QStringList("secret"));
        QVERIFY(pdfobjects::isEncryptedWith(run.output, Assembling::Allowed) ||
                pdfobjects::isEncryptedWith(run.output, Assembling::Forbidden));
        QCOMPARE(pdfobjects::isEncryptedWith(run.output, Assembling::Allowed),
                 pdfobjects::isEncryptedWith(run.input, Assembling::Allowed));
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

/// Objects are then found anew: from there on no object is what the table said.
void TestMerge::damageIsFoundMeanwhile()
{
    PdfBuilder file;
    file.add("<< /Type /Pages /Kids [2 0 R 3 0 R] /Count 2 /MediaBox [0 0 9 9] >>");
    file.add("<< /Type /Page /Parent 1 0 R /Trans 4 0 R >>");
    file.add("<< /Type /Page /Parent 1 0 R >>");
    file.add("<< /S /Wipe >>");
    file.add("<< /First 6 0 R /Last 6 0 R >>");
    file.add("<< /Parent 5 0 R /Title (one) /Dest [2 0 R /Fit] >>");
    file.add("0\nendobj\n6 0 obj\n<< /Parent 5 0 R /Title (two) /Dest [3 0 R /Fit] >>");
    const int catalog = file.add("<< /Type /Catalog /Pages 1 0 R /Outlines 5 0 R >>");
    const MergeRun run(file.bytes(catalog).replace("4 0 obj", "4 0 xbj"), "1");
    QCOMPARE(run.result.exitCode, 0);
    QVERIFY(!pdfobjects::decoded(run.output).contains("two"));
}

void TestMerge::cutOffContentsStay_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<QByteArray>("lost");
    QTest::newRow("within the stream") << QByteArray() << QByteArray();
    QTest::newRow("behind the object, table lost")
        << QByteArray("\nendstream\nendobj") << QByteArray("startxref");
    QTest::newRow("within the stream, trailer lost") << QByteArray() << QByteArray("trailer");
}

/// The table of offsets says that the contents stand at the very end of the file.
void TestMerge::cutOffContentsStay()
{
    QFETCH(QByteArray, end);
    QFETCH(QByteArray, lost);
    QByteArray bytes = simplePdf({showText(20, 100, "dropped")});
    const qsizetype stream = bytes.indexOf("stream");
    const qsizetype object = bytes.lastIndexOf("\n", bytes.lastIndexOf(" 0 obj", stream)) + 1;
    const QByteArray header = bytes.mid(object, bytes.indexOf("obj", object) + 3 - object);
    const auto entry = [](qsizetype offset) {
        return QByteArray::number(offset).rightJustified(10, '0') + ' ';
    };
    bytes.replace(entry(object), entry(bytes.size()));
    bytes += header + " << /Length 999 >>\nstream\n" + showText(20, 100, "kept").trimmed() + end;
    if (!lost.isEmpty())
        bytes.replace(lost, "lost");
    const MergeRun run(bytes, "1");
    QCOMPARE(run.result.exitCode, 0);
    QCOMPARE(pdfreader::pageTexts(run.output), QStringList("kept"));
    QVERIFY(!pdfobjects::decoded(run.output).contains(" obj"));
}

void TestMerge::widgetsShareTheirField_data()
{
    QTest::addColumn<QByteArray>("annotations"); // of the first page; the second has 2 0 R
    QTest::addColumn<QString>("ranges");
    QTest::addColumn<QString>("names");
    const QByteArray both = "1 0 R 2 0 R";
    QTest::newRow("field that is its first widget") << both << "1"
                                                    << "name name";
    QTest::newRow("such a field on a page outside") << both << "2"
                                                    << "name";
    QTest::newRow("listed twice") << QByteArray("1 0 R 1 0 R") << "1"
                                  << "name name";
    QTest::newRow("page repeated") << both << "1 1"
                                   << "name name name name";
    QTest::newRow("page without widgets") << QByteArray() << "1"
                                          << "";
    QTest::newRow("button that is off, page repeated") << QByteArray("2 0 R") << "1 1"
                                                       << "name";
}

/// However the widgets are written, there is one field, and all of them are below it.
void TestMerge::widgetsShareTheirField()
{
    QFETCH(QByteArray, annotations);
    QFETCH(QString, ranges);
    QFETCH(QString, names);
    PdfBuilder file;
    const int field = file.add("<< /Subtype /Widget /FT /Tx /T (name) /V (value) /Kids [2 0 R] "
                               "/Rect [9 9 90 20] >>");
    const bool isButton = QByteArray(QTest::currentDataTag()).startsWith("button");
    file.add("<< /Subtype /Widget /Rect [0 0 9 9] /Parent 1 0 R " +
             QByteArray(isButton ? "/AS /Off /AP << /N << >> >>" : "") + " >>");
    file.add("<< /Type /Pages /Kids [4 0 R 5 0 R] /Count 2 /MediaBox [0 0 99 99] >>");
    file.add("<< /Type /Page /Parent 3 0 R /Annots [" + annotations + "] >>");
    file.add("<< /Type /Page /Parent 3 0 R /Annots [2 0 R] >>");
    file.add("<< /Type /OCG /Name (layer) >>");
    file.add("<< /L 6 0 R >>");
    const MergeRun run(file.bytes(file.add("<< /Type /Catalog /Pages 3 0 R /OCProperties << /OCGs "
                                           "[6 0 R] >> /AcroForm << /DR << /Properties 7 0 R >> "
                                           "/Fields [" +
                                           PdfBuilder::ref(field) + "] >> >>")),
                       ranges);
    QCOMPARE(run.result.exitCode, 0);
    QCOMPARE(pdfobjects::fieldNames(run.output), names);
    const bool isKept = !names.isEmpty();
    QCOMPARE(pdfobjects::count(run.output, "/T (name)"), isKept ? 1 : 0);
    // The field has no place on a page.
    QCOMPARE(pdfobjects::count(run.output, "/T (name) /Rect"), 0);
    QCOMPARE(pdfobjects::listLength(run.output, "/Fields"), isKept ? 1 : -1);
    // What no page uses is left in the form's defaults.
    QCOMPARE(pdfobjects::count(run.output, "(layer)"), 0);
}

SENDRIVO_TEST_MAIN(TestMerge, QCoreApplication)
#include "tst_merge.moc"
