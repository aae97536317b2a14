// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pagefragments.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"

#include <QRect>
#include <QTest>

#include <functional>

/// What is one fragment and what it says, on tiny files. The page is 300 x 200 points, that is
/// 400 x 267 pixels; Helvetica advances by 0.5 em in "a", 0.278 em in a blank.
class TestFragments : public QObject
{
    Q_OBJECT

private slots:
    void fragmentTexts_data();
    void fragmentTexts();
    void rightToLeft_data();
    void rightToLeft();
    void unknownLetters();
    void boxOfVerticalWriting();
    void cornerDoesNotDependOnText();
};

namespace {

QStringList textsOf(const QByteArray &bytes)
{
    QStringList texts;
    for (const pdf::Fragment &fragment : fragmentsOf(bytes))
        texts.append(QString::fromStdString(fragment.text));
    return texts;
}

/// A page with the contents and, as /F2, the font object made by font.
QByteArray pageWithFont(const QByteArray &contents,
                        const std::function<QByteArray(PdfBuilder &)> &font)
{
    PdfBuilder file;
    const int fontNumber = file.add(font(file));
    const int data = file.addStream(contents);
    const int root = file.reserve();
    const int page =
        file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                 " /MediaBox [0 0 300 200] /Resources << /Font << /F2 " +
                 PdfBuilder::ref(fontNumber) + " >> >> /Contents " + PdfBuilder::ref(data) + " >>");
    file.define(root, "<< /Type /Pages /Kids [" + PdfBuilder::ref(page) + "] /Count 1 >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " >>"));
}

/// A map of character codes to characters (UTF-16BE hexadecimal): the codes from first on, and
/// those before "a" as in ASCII.
int addUnicodeMap(PdfBuilder &file, const QByteArray &codeSpace, int first,
                  const QByteArrayList &characters)
{
    const auto width = codeSpace.size();
    QByteArray map = "/CIDInit /ProcSet findresource begin 12 dict begin begincmap\n"
                     "1 begincodespacerange <" +
                     QByteArray(width, '0') + "> <" + codeSpace + "> endcodespacerange\n" +
                     "1 beginbfrange <" + QByteArray::number(0x20, 16).rightJustified(width, '0') +
                     "> <" + QByteArray::number(0x60, 16).rightJustified(width, '0') +
                     "> <0020> endbfrange\n" + QByteArray::number(characters.size()) +
                     " beginbfchar\n";
    for (qsizetype i = 0; i < characters.size(); ++i)
        map += "<" + QByteArray::number(first + i, 16).rightJustified(width, '0') + "> <" +
               characters[i] + ">\n";
    return file.addStream(map + "endbfchar endcmap end end");
}

/// As /F2 a font whose codes a, b, c ... mean the given characters, all 600 units wide.
QByteArray mappedPdf(const QByteArray &contents, const QByteArrayList &characters)
{
    return pageWithFont(contents, [&](PdfBuilder &file) {
        QByteArray widths;
        for (int code = 32; code < 107; ++code)
            widths += " 600";
        return "<< /Type /Font /Subtype /Type1 /BaseFont /Courier /FirstChar 32 /LastChar 106 "
               "/Widths [" +
               widths + "] /ToUnicode " +
               PdfBuilder::ref(addUnicodeMap(file, "FF", 'a', characters)) + " >>";
    });
}

/// A line in a font whose letters from code 1 on are drawings with names of its own.
QByteArray drawingsPdf(const QByteArray &codes, const QByteArrayList &drawings)
{
    return pageWithFont("BT /F2 12 Tf 20 100 Td (" + codes + ") Tj ET", [&](PdfBuilder &file) {
        QByteArray names;
        QByteArray procedures;
        for (qsizetype i = 0; i < drawings.size(); ++i) {
            const QByteArray name = "/drawing_" + QByteArray::number(i) + ' ';
            names += name;
            procedures += name + PdfBuilder::ref(file.addStream("1 0 d0 " + drawings[i])) + ' ';
        }
        return "<< /Type /Font /Subtype /Type3 /FontBBox [0 0 1 1] /FontMatrix [1 0 0 1 0 0] "
               "/FirstChar 1 /LastChar 3 /Widths [1 1 1] /Encoding << /Differences [1 " +
               names + "] >> /CharProcs << " + procedures + " >> >>";
    });
}

/// Text that runs downwards from 100, 150; its code 1 is the sign for sun, 2 that for root.
QByteArray verticalPdf(const QByteArray &operators)
{
    return pageWithFont("BT /F2 12 Tf 100 150 Td " + operators + " ET", [](PdfBuilder &file) {
        return "<< /Type /Font /Subtype /Type0 /BaseFont /Vertical /Encoding /Identity-V "
               "/DescendantFonts [<< /Type /Font /Subtype /CIDFontType0 /BaseFont /Vertical /DW "
               "1000 /FontDescriptor << /Type /FontDescriptor /FontName /Vertical /Flags 4 /Ascent "
               "880 /Descent -120 /FontBBox [0 -120 1000 880] >> /CIDSystemInfo << /Registry "
               "(Adobe) /Ordering (Japan1) /Supplement 0 >> >>] "
               "/ToUnicode " +
               PdfBuilder::ref(addUnicodeMap(file, "FFFF", 1, {"65E5", "672C"})) + " >>";
    });
}

/// Operators whose text the document states beside them.
QByteArray stated(const QByteArray &text, const QByteArray &operators)
{
    return "/Span << /ActualText " + text + " >> BDC " + operators + " EMC ";
}

QByteArray mappedLine(const QByteArray &codes)
{
    return "BT /F2 12 Tf 20 100 Td (" + codes + ") Tj ET";
}

/// A page that shows the form XObject and has an annotation at 20, 20 with the entries and, unless
/// it is empty, the appearance.
QByteArray formAndAnnotation(const QByteArray &form, const QByteArray &entries,
                             const QByteArray &appearance = QByteArray())
{
    PdfBuilder file;
    const QByteArray fonts = "<< /Font << /F1 " + PdfBuilder::ref(file.addHelvetica()) + " >> >>";
    const QByteArray formEntries =
        "/Type /XObject /Subtype /Form /BBox [0 0 300 200] /Resources " + fonts;
    const int drawn = file.addStream(form, formEntries);
    QByteArray annotation = "<< /Type /Annot /Rect [20 20 320 220] " + entries;
    if (!appearance.isEmpty())
        annotation +=
            " /AP << /N " + PdfBuilder::ref(file.addStream(appearance, formEntries)) + " >>";
    const QByteArray annotations = '[' + PdfBuilder::ref(file.add(annotation + " >>")) + ']';
    const int contents = file.addStream("/X Do");
    const int root = file.reserve();
    const int page = file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 300 200] /Contents " + PdfBuilder::ref(contents) +
                              " /Resources << /XObject << /X " + PdfBuilder::ref(drawn) +
                              " >> >> /Annots " + annotations + " >>");
    file.define(root, "<< /Type /Pages /Kids [" + PdfBuilder::ref(page) + "] /Count 1 >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) +
                               " /AcroForm << /DR " + fonts + " /Fields " + annotations +
                               " >> >>"));
}

/// As /F2 a font whose letter "a" is a drawing, ten units high and wide.
QByteArray drawnFontPdf(const QByteArray &contents, const QByteArray &unit = "0.05",
                        const QByteArray &box = "0 0 10 10")
{
    return pageWithFont(contents, [&](PdfBuilder &file) {
        return "<< /Type /Font /Subtype /Type3 /FontBBox [" + box + "] /FontMatrix [" + unit +
               " 0 0 " + unit +
               " 0 0] /FirstChar 97 /LastChar 97 /Widths [10] /Encoding << /Differences [97 /a] >> "
               "/CharProcs << /a " +
               PdfBuilder::ref(file.addStream("10 0 0 0 10 10 d1 0 0 10 10 re f")) +
               " >> /ToUnicode " + PdfBuilder::ref(addUnicodeMap(file, "FF", 'a', {"0041"})) +
               " >>";
    });
}

QByteArray inHelvetica(const QByteArray &operators)
{
    return simplePdf({"BT /F1 10 Tf 20 100 Td " + operators + " ET"});
}

} // namespace

void TestFragments::fragmentTexts_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("texts");

    const auto row = [](const char *name, const QByteArray &bytes, const QStringList &texts) {
        QTest::newRow(name) << bytes << texts;
    };
    row("one string", inHelvetica("(Hello world) Tj"), {"Hello world"});
    row("no text", simplePdf({"0 0 10 10 re f"}), {});
    row("blanks at both ends", inHelvetica("(   Hello   ) Tj"), {"Hello"});
    row("only blanks", inHelvetica("(   ) Tj"), {});
    row("two blanks inside", inHelvetica("(Hello  world) Tj"), {"Hello world"});
    row("blanks as wide as a column gap", inHelvetica("(Total      12.00) Tj"), {"Total", "12.00"});
    row("kerned letters", inHelvetica("[(A) 80 (V) -20 (A) 74 (TAR)] TJ"), {"AVATAR"});
    row("words parted by a movement only", inHelvetica("[(two) -278 (words)] TJ"), {"two words"});
    row("dots of an ellipsis", inHelvetica("[(2,) -150 (.) -150 (.) -150 (.)] TJ"), {"2, . . ."});
    row("wide word spaces by movement only", inHelvetica("[(two) -650 (words)] TJ"), {"two words"});
    row("wide space behind a sentence", inHelvetica("[(\"It is.\") -900 (So)] TJ"),
        {"\"It is.\" So"});
    row("letters far apart", inHelvetica("8 Tc (TAX NO) Tj"), {"TAX NO"});
    row("a line not level with a text far along it",
        simplePdf({showText(20, 100, "No.") + showText(44, 98.6, "INV-0042") +
                   showText(200, 101, "Urgent")}),
        {"Urgent", "No. INV-0042"});
    row("letters far apart, placed one by one", inHelvetica("[(I)-900(B)-900(A)-900(N)] TJ"),
        {"IBAN"});
    row("letters as column heads",
        inHelvetica("(A) Tj 15 0 Td (B) Tj 15 0 Td (C) Tj 15 0 Td (D) Tj"), {"A", "B", "C", "D"});
    row("digits in columns", inHelvetica("[(1)-900(2)-900(3)-900(4)] TJ"), {"1", "2", "3", "4"});
    row("column gap by movement", inHelvetica("[(Label) -750 (Value)] TJ"), {"Label", "Value"});
    row("two columns side by side",
        simplePdf({showText(20, 100, "Label", 10) + showText(52.5, 100, "Value", 10)}),
        {"Label", "Value"});
    row("column gap behind a blank", inHelvetica("[(Label ) -750 (Value)] TJ"), {"Label", "Value"});
    row("blank of an em",
        mappedPdf("BT /F2 12 Tf 20 100 Td (a) Tj 4.8 Tc (b) Tj 0 Tc (a) Tj ET", {"65E5", "3000"}),
        {QString::fromUtf8("日 日")});
    row("words shown one by one",
        simplePdf({showText(20, 100, "one", 10) + showText(38.5, 100, "by", 10) +
                   showText(51.5, 100, "one", 10)}),
        {"one by one"});
    row("words shown in another order",
        simplePdf({showText(57, 100, "three", 10) + showText(20, 100, "one", 10) +
                   showText(38.5, 100, "two", 10)}),
        {"one two three"});
    row("spaced letters", inHelvetica("3 Tc (INVOICE) Tj"), {"INVOICE"});
    row("spaced letters with a tight pair",
        inHelvetica("[(\\() -300 (1) -300 (7) -300 (\\)) -300 (-) (B) -300 (/) -300 (1)] TJ"),
        {"(17)-B/1"});
    row("letter shown apart from its word",
        simplePdf({"BT /F1 10 Tf 20 100 Td [(Nguy) -556 (n) -278 (An)] TJ ET " +
                   showText(43.3, 100, "e", 10)}),
        {"Nguyen An"});
    row("single letters parted by movements", inHelvetica("[(A) -278 (1) -278 (B2)] TJ"),
        {"A 1 B2"});
    row("dots that lead to a number",
        inHelvetica("[(3.2) -278 (On) -300 (.) -300 (.) -300 (.) -300 (.) -300 (.) -300 (7)] TJ"),
        {"3.2 On . . . . . 7"});
    row("a label beside single letters",
        simplePdf({showText(20, 100, "Number", 10) + showText(66, 100, "V A 3", 10)}),
        {"Number", "V A 3"});
    row("spaced letters of two words", inHelvetica("3 Tc (TAX INVOICE) Tj"), {"TAX INVOICE"});
    row("stretched word spaces", inHelvetica("4 Tw (a justified line) Tj"), {"a justified line"});
    row("blank that the spacing takes back", inHelvetica("-1.4 Tc -1 Tw (AV AV) Tj"), {"AVAV"});
    row("tight word spaces", inHelvetica("-0.8 Tw (a tight line) Tj"), {"a tight line"});
    row("two lines", simplePdf({showText(20, 100, "upper") + showText(20, 86, "lower")}),
        {"upper", "lower"});
    // Helvetica advances by 0.722 em in H and N, by 0.778 em in O.
    row("raised letters", simplePdf({showText(20, 100, "m") + showText(30, 104, "2", 8)}), {"m2"});
    row("raised letters within a line",
        simplePdf(
            {showText(20, 100, "1") + showText(26.7, 104, "st", 8) + showText(37, 100, "of May")}),
        {"1st of May"});
    row("raised letters as wide as a column gap",
        simplePdf({showText(20, 100, "x") + showText(26, 104, "\\(1+10\\)", 8) +
                   showText(50, 100, "y") + showText(56, 104, "\\(1+10\\)", 8) +
                   showText(80, 100, "z")}),
        {"x(1+10)y(1+10)z"});
    row("lowered letters drawn first",
        simplePdf({showText(28.7, 98, "2", 8) + showText(50.5, 98, "4", 8) +
                   showText(20, 100, "H") + showText(33.1, 100, "SO")}),
        {"H2SO4"});
    row("lowered letters close to each other",
        simplePdf({showText(20, 100, "x") + showText(26, 98, "1", 8) + showText(30.4, 100, "y") +
                   showText(36.4, 98, "2", 8)}),
        {"x1y2"});
    row("lowered letters of full size",
        simplePdf({showText(20, 100, "T") + showText(26, 97.5, "E") + showText(32.5, 100, "X")}),
        {"TEX"});
    row("raised letters behind a blank",
        simplePdf({showText(20, 100, "x ") + showText(29.4, 104, "2", 8)}), {"2", "x"});
    row("raised letters before a line",
        simplePdf({showText(20, 104, "1", 8) + showText(24.5, 100, "See")}), {"1", "See"});
    row("label in small print above a field",
        simplePdf({showText(20, 100, "Berlin") + showText(53, 109, "Zip", 6)}), {"Zip", "Berlin"});
    row("blank before a line a little higher",
        simplePdf({showText(20, 100, "one ") + showText(42.5, 100.5, "two")}), {"one two"});
    row("letters reaching far under the one before", inHelvetica("[(H) 560 (I)] TJ"), {"HI"});
    row("another text over a text",
        simplePdf({showText(20, 100, "Paid") + showText(20, 100, "Potato")}), {"Paid", "Potato"});
    row("shadow", simplePdf({showText(22.5, 97.5, "Bold") + showText(20, 100, "Bold")}), {"Bold"});
    row("shadow beside", simplePdf({showText(23, 100, "Bold") + showText(20, 100, "Bold")}),
        {"Bold"});
    row("shown twice in place",
        simplePdf({showText(20, 100, "Bold") + showText(20.3, 100, "Bold")}), {"Bold"});
    row("filled, then stroked word by word",
        simplePdf({showText(20, 100, "Two words") + "1 Tr " + showText(20, 100, "Two") +
                   showText(46.01, 100, "words")}),
        {"Two words"});
    row("each letter shown twice",
        inHelvetica("(l) Tj 0.2 0 Td (l) Tj 2.0 0 Td (l) Tj 0.2 0 Td (l) Tj"), {"ll"});
    row("invisible, as in scans", inHelvetica("3 Tr (recognised) Tj"), {"recognised"});
    row("used for clipping", inHelvetica("7 Tr (clip) Tj"), {"clip"});
    row("outside the crop box",
        simplePdf({showText(20, 100, "inside") + showText(20, 180, "above") +
                   showText(200, 100, "beside")},
                  "/CropBox [0 50 150 150]"),
        {"inside"});
    row("outside the media box", simplePdf({showText(20, 300, "above")}), {});
    const QByteArray inForm = showText(20, 150, "in a form");
    const QByteArray inField = showText(5, 5, "in a field");
    row("form and stamp", formAndAnnotation(inForm, "/Subtype /Stamp /F 4", inField),
        {"in a form", "in a field"});
    row("form field",
        formAndAnnotation(inForm, "/Subtype /Widget /FT /Tx /T (a) /V (old)", inField),
        {"in a form", "in a field"});
    row("form field that viewers draw themselves",
        formAndAnnotation(inForm, "/Subtype /Widget /FT /Tx /T (a) /V (INV-7) /DA (/F1 12 Tf)"),
        {"in a form", "INV-7"});
    row("hidden annotation", formAndAnnotation(inForm, "/Subtype /Stamp /F 2", inField),
        {"in a form"});
    row("stated text in a form", formAndAnnotation(stated("(fish)", inForm), "/Subtype /Link"),
        {"fish"});
    row("letters that are drawings", drawnFontPdf("BT /F2 12 Tf 20 100 Td [(a) -300 (aa)] TJ ET"),
        {"A AA"});
    const QByteArray ofPixels = "BT /F2 1 Tf 20 100 Td [(a) -4000 (aa) 1000 (a)] TJ ET";
    row("letters in pixels", drawnFontPdf(ofPixels, "1"), {"A AAA"});
    row("letters in pixels without a box", drawnFontPdf(ofPixels, "1", "0 0 1 1"), {"A AAA"});
    row("widths that the font program does not have",
        pageWithFont("BT /F2 12 Tf 20 100 Td (bab) Tj ET",
                     [](PdfBuilder & /*file*/) {
                         return QByteArray("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica "
                                           "/FirstChar 97 /LastChar 98 /Widths [800 556] >>");
                     }),
        {"bab"});
    row("ligature as one character", mappedPdf(mappedLine("abc"), {"006F", "FB03", "0063"}),
        {"offic"});
    row("ligature as several characters", mappedPdf(mappedLine("ab"), {"00660069", "006E"}),
        {"fin"});
    row("ligature drawn twice",
        mappedPdf(
            "BT /F2 12 Tf 20 100 Td (XaX) Tj 0.3 0 Td (XaX) Tj 0 20 Td (Xa) Tj 0.3 0 Td (Xa) Tj ET",
            {"006600660069"}),
        {"Xffi", "XffiX"});
    // Each of the codes a to f in a word, with what the map adds to its letter.
    row("letters beside blanks and what leaves no trace",
        mappedPdf(
            mappedLine("XaX XbX XcX XdX XeX Xf"),
            {"FEFF0041", "00200042", "004300A0", "0044000A0045", "030500460046", "0047FEFF0020"}),
        {QString::fromUtf8("XAX X BX XC X XD EX XF̅FX XG")});
    row("no-break and other blanks",
        mappedPdf(mappedLine("abcdcec"), {"0041", "00A0", "0042", "2009", "3000"}), {"A B B B"});
    row("soft hyphen", mappedPdf(mappedLine("abc"), {"0041", "00AD", "0042"}), {"A-B"});
    row("marks composed", mappedPdf(mappedLine("a"), {"00650301"}), {QString::fromUtf8("é")});
    row("accent drawn before its letter", inHelvetica("[(M) -111 (\\250) 444 (uller)] TJ"),
        {QString::fromUtf8("Müller")});
    row("accent drawn above its capital",
        simplePdf({showText(21, 102, "\xB4") + showText(20, 100, "Emile")}),
        {QString::fromUtf8("Émile")});
    row("accent drawn after its letter", inHelvetica("[(c) 417 (\\270) -84 (a)] TJ"),
        {QString::fromUtf8("ça")});
    row("accent on a letter without dot",
        mappedPdf("BT /F2 12 Tf 20 100 Td [(b) 600 (a)] TJ ET", {"0131", "00B4"}),
        {QString::fromUtf8("í")});
    row("accent of its own", inHelvetica("(don\\264t \\250) Tj"), {QString::fromUtf8("don´t ¨")});
    row("letters mapped to control characters",
        mappedPdf(mappedLine("abcXb"), {"0041", "0007", "000C"}), {"AbcXb"});
    row("line separator", mappedPdf(mappedLine("abc"), {"0041", "2028", "0042"}), {"A B"});
    row("ligatures with their bytes swapped",
        mappedPdf(mappedLine("ab c"), {"66006900", "6600CF00", "66006906"}),
        {QString::fromUtf8("fiffi \u6600\u6906")});
    row("minus that is the font's hyphen",
        pageWithFont("BT /F2 12 Tf 20 100 Td (A-\\261) Tj ET",
                     [](PdfBuilder &file) {
                         return "<< /Type /Font /Subtype /Type1 /BaseFont /Courier /Encoding << "
                                "/Differences [177 /minus] >> /ToUnicode " +
                                PdfBuilder::ref(addUnicodeMap(file, "FF", '-', {"2212"})) + " >>";
                     }),
        {QString::fromUtf8("A-\u2212")});
    row("lone surrogate", mappedPdf(mappedLine("ab"), {"0041", "D800"}), {"Ab"});
    row("beyond the basic plane", mappedPdf(mappedLine("a"), {"D83DDE00"}),
        {QString::fromUtf8("😀")});
    row("direction marks", mappedPdf(mappedLine("abc"), {"0041", "200E", "0042"}), {"AB"});
    row("downwards", verticalPdf("<00010002> Tj"), {QString::fromUtf8("日本")});
    row("stated text of a ligature", inHelvetica(stated("(fi)", "(x) Tj") + "(sh) Tj"), {"fish"});
    row("stated soft hyphen", inHelvetica("(co) Tj " + stated("<FEFF00AD>", "(!) Tj")), {"co-"});
    row("stated words", inHelvetica("(a ) Tj " + stated("( two  words )", "(xxx) Tj") + "(b) Tj"),
        {"a two words b"});
    row("stated blank", inHelvetica("(a) Tj " + stated("( )", "( ) Tj") + "(b) Tj"), {"a b"});
    row("stated to be nothing", inHelvetica(stated("()", "(xx) Tj") + "(a) Tj"), {"a"});
    row("stated text within stated text",
        inHelvetica(stated("(outer)", stated("(inner)", "(x) Tj") + "(y) Tj") + "(z) Tj"),
        {"outerz"});
    row("stated text of two lines", inHelvetica(stated("(all)", "(one) Tj 0 -20 Td (two) Tj")),
        {"one", "two"});
    row("stated text across the crop box",
        simplePdf({stated("(whole)", showText(20, 100, "seen unseen"))}, "/CropBox [0 0 50 200]"),
        {"seen"});
    row("stated text without an end", inHelvetica("/Span << /ActualText (ab) >> BDC (x) Tj"),
        {"ab"});
    row("stated text drawn twice",
        inHelvetica(stated("(ab)", "(x) Tj") + "0 0 Td " + stated("(ab)", "(x) Tj")), {"ab"});
}

void TestFragments::rightToLeft_data()
{
    QTest::addColumn<QByteArray>("shown"); // operators, codes from left to right
    QTest::addColumn<QString>("text");
    // The codes: a to d are shin, lamed, vav and final mem; e and f are beh and lam-alef in Arabic
    // shapes, g is a vowel point.
    const auto row = [](const char *name, const QByteArray &shown, const char *text) {
        QTest::newRow(name) << shown << QString::fromUtf8(text);
    };
    row("a word", "(dcba) Tj", "שלום");
    row("two words", "(ba dcba) Tj", "שלום של");
    row("a letter at a time from the right",
        "40 0 Td (a) Tj -7.2 0 Td (b) Tj -7.2 0 Td (c) Tj -7.2 0 Td (d) Tj", "שלום");
    row("a number behind", "(12.50 dcba) Tj", "שלום 12.50");
    row("a number and a sign", "(5% dcba) Tj", "שלום 5%");
    row("a date before", "(dcba 31/12/2026) Tj", "31/12/2026 שלום");
    row("a Latin word", "(INV-7 dcba) Tj", "שלום INV-7");
    row("a word in Latin text", "(INVOICE ba NO) Tj", "INVOICE של NO");
    row("brackets as they look", "(\\(ba\\) dc) Tj", "ום (של)");
    row("brackets as they are meant", "(\\)ba\\( dc) Tj", "ום (של)");
    row("brackets in Latin text", "(VAT \\(ba\\)) Tj", "VAT (של)");
    row("shapes inside words", "(fe) Tj", "بلا");
    row("vowel points", "(b) Tj 2 0 Td (g) Tj 5.2 0 Td (a) Tj", "שלָ");
    row("vowel points at another height, before their letter",
        "(b) Tj 7.2 2 Td (g) Tj 0 -2 Td (a) Tj", "שָל");
    row("stated letter with a vowel point",
        "(c) Tj 7.2 2 Td " + stated("<FEFF05DC05B8>", "(g) Tj 0 -2 Td (b) Tj"), "לָו");
    row("stated vowel point", "(b) Tj 2 3 Td " + stated("<FEFF05B8>", "(e) Tj"), "לָ");
    row("percent after Arabic", "(%50 fe) Tj", "بلا 50%");
    row("stated in reading order", stated("<FEFF05E905DC>", "(ef) Tj") + "(c) Tj", "ושל");
}

void TestFragments::rightToLeft()
{
    QFETCH(QByteArray, shown);
    QFETCH(QString, text);
    const QByteArray page = mappedPdf("BT /F2 12 Tf 20 100 Td " + shown + " ET",
                                      {"05E9", "05DC", "05D5", "05DD", "FE91", "FEFC", "05B8"});
    QCOMPARE(textsOf(page), QStringList{text});
}

void TestFragments::boxOfVerticalWriting()
{
    // Glyphs hang from the pen at x = 100, y = 150 points, centred; the second one is 1 em below.
    const auto fragments = fragmentsOf(verticalPdf("<00010002> Tj"));
    QCOMPARE(fragments.size(), std::size_t{1});
    QCOMPARE(QRect(fragments[0].left, fragments[0].top, fragments[0].width, fragments[0].height),
             QRect(125, 68, 16, 32));
}

void TestFragments::unknownLetters()
{
    const QByteArray square = "0 0 1 1 re f";
    const QByteArray bar = "0 0 .2 1 re f";
    const auto textOf = [](const QByteArray &bytes) { return textsOf(bytes).value(0); };
    const QString one = textOf(drawingsPdf("\1", {square, bar}));
    const QString other = textOf(drawingsPdf("\2", {square, bar}));
    QVERIFY(!one.isEmpty() && !other.isEmpty() && one != other);
    // As in another subset of the same font.
    QCOMPARE(textOf(drawingsPdf("\1", {bar})), other);
    QCOMPARE(textOf(drawingsPdf("\3\1\2\1\3\1", {square, bar, QByteArray()})),
             one + other + one + ' ' + one);
    // The picture of the name is another one in each font.
    QVERIFY(textOf(drawingsPdf("\1", {"/Im Do", "/Im Do"})) !=
            textOf(drawingsPdf("\2", {"/Im Do", "/Im Do"})));
    // Codes that a font has no glyph for.
    QVERIFY(textOf(inHelvetica("(\\001) Tj")) != textOf(inHelvetica("(\\002) Tj")));
}

void TestFragments::fragmentTexts()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, texts);
    QCOMPARE(textsOf(bytes), texts);
}

void TestFragments::cornerDoesNotDependOnText()
{
    // 40 pixels from the left; the raised letters stand behind "Smith".
    const QByteArray smith = showText(30, 100, "Smith");
    QByteArrayList lines = {smith + showText(60.1, 104, "2", 8),
                            smith + showText(60.1, 98, "a", 7)};
    // Small capitals: what begins with a small letter, and a word of small letters behind another.
    lines.append(showText(30, 100, "X", 9) + showText(36, 100, "-99") + showText(58, 100, "Y", 9));
    lines.append(showText(30, 100, "99") + showText(46, 100, "Y", 9));
    for (const char *text : {"INV-0042", "i", "\xC4\xD6\xDC", "jgq", "_", "'", "WWWWWWWW"})
        lines.append(showText(30, 100, text));
    for (const QByteArray &line : lines) {
        const auto fragments = fragmentsOf(simplePdf({line}));
        QCOMPARE(fragments.size(), std::size_t{1});
        QCOMPARE(QPoint(fragments[0].left, fragments[0].top), QPoint(40, 121));
        QCOMPARE(fragments[0].height, 16);
    }
    for (const char *box : {"0 0 10 7", "0 -3 10 8", "0 -3 10 12"}) {
        const auto fragments =
            fragmentsOf(drawnFontPdf("BT /F2 1 Tf 20 100 Td (a) Tj ET", "1", box));
        QCOMPARE(fragments.size(), std::size_t{1});
        QCOMPARE(QRect(fragments[0].left, fragments[0].top, 0, fragments[0].height),
                 QRect(27, 125, 0, 11));
    }
}

SENDRIVO_TEST_MAIN(TestFragments, QCoreApplication)
#include "tst_fragments.moc"
