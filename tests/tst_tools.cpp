// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfobjects.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QColorSpace>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>

/// The contract of the two command-line tools: exit codes, files they leave and files they must not
/// leave, standard error.
class TestTools : public QObject
{
    Q_OBJECT

private slots:
    void usage_data();
    void usage();
    void badInputs_data();
    void badInputs();
    void unwritableOutputs_data();
    void unwritableOutputs();
    void fullDisk();
    void infoFile();
    void layoutFiles_data();
    void layoutFiles();
    void faultsOfFontsAreTold();
    void imageShowsThePage();
    void pageWithoutImageKeepsItsText();
    void earlierPagesTakeNoMemory();
    void tableInManySections();
    void namesAreBytes();
    void inputIsNeverOverwritten();
};

/// Puts something at a path.
using Maker = std::function<void(const QString &path)>;

namespace {

/// Bytes; more than the tools need, less than they may have.
constexpr int filler = 64 << 20;

const QByteArray stale = "left by an earlier run";

QByteArray threePages()
{
    return simplePdf({showText(20, 100, "one"), "", showText(20, 100, "three")});
}

QStringList arguments(const QString &line, const QString &folder)
{
    QStringList result = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (QString &argument : result)
        argument.replace(QStringLiteral("@"), folder);
    return result;
}

/// A limit of this process and of the tools it runs meanwhile.
class Limited
{
public:
    Limited(__rlimit_resource_t limited, rlim_t value) : resource(limited)
    {
        getrlimit(resource, &before);
        rlimit small = before;
        small.rlim_cur = value;
#if defined(__SANITIZE_ADDRESS__)
        // The sanitizer's own memory counts, too.
        if (resource == RLIMIT_DATA)
            small = before;
#endif
        setrlimit(resource, &small);
    }
    ~Limited()
    {
        setrlimit(resource, &before);
    }
    Limited(const Limited &) = delete;
    Limited &operator=(const Limited &) = delete;

private:
    __rlimit_resource_t resource;
    rlimit before = {};
};

} // namespace

void TestTools::usage_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("exitCode");
    const auto row = [](const char *tool, const char *line, int exitCode) {
        QTest::addRow("%s %s", tool, line) << QString(tool) << QString(line) << exitCode;
    };
    row("stavekit", "-help", 0);
    row("stavekit", "-version", 0);
    row("stavekit", "", 2);
    row("stavekit", "@/in.pdf -getinfo -outfile", 2);
    row("stavekit", "@/in.pdf -getinfo 1 -outfile @/out", 2);
    row("stavekit", "@/in.pdf -merge -outfile @/out", 2);
    row("stavekit", "@/in.pdf -merge 1 -outfile @/out more", 2);
    row("stavekit", "@/in.pdf -burst 1 -outfile @/out", 2);
    row("stavekit", "@/in.pdf -merge 0 -outfile @/out", 2);
    row("stavekit", "@/in.pdf -merge 1 4 -outfile @/out", 2);
    row("stavekit", "@/in.pdf -merge 2-1 -outfile @/out", 2);
    row("stavekit", "@/in.pdf -merge 1 x -outfile @/out", 2);
    row("quillrend", "-help", 0);
    row("quillrend", "-version", 0);
    row("quillrend", "", 2);
    row("quillrend", "-htmlformat @/in.pdf", 2);
    row("quillrend", "-htmlformat -x @/in.pdf @/out", 2);
    row("quillrend", "-htmlformat -f @/in.pdf @/out", 2);
    row("quillrend", "-htmlformat -f 0 @/in.pdf @/out", 2);
    row("quillrend", "-htmlformat -f 4 @/in.pdf @/out", 2);
    row("quillrend", "-htmlformat -f 3 -l 2 @/in.pdf @/out", 2);
    row("quillrend", "-htmlformat -l 99 @/in.pdf @/out", 0);
    row("quillrend", "-htmlformat -- @/in.pdf @/out", 0);
}

void TestTools::usage()
{
    QFETCH(QString, tool);
    QFETCH(QString, line);
    QFETCH(int, exitCode);
    const QTemporaryDir folder;
    writeFile(folder.filePath("in.pdf"), threePages());
    const ToolResult result = runTool(tool, arguments(line, folder.path()));
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.errors.count('\n'), exitCode == 0 ? 0 : 1);
    if (line == QLatin1String("-help")) {
        for (const char *code : {"  0  ", "  2  ", "  3  ", "  4  ", "  5  ", "  6  "})
            QVERIFY2(result.output.contains(code), code);
    }
    if (line == QLatin1String("-version"))
        QCOMPARE(result.output, tool.toUtf8() + " 2.0.0\n");
    if (exitCode != 0)
        QCOMPARE(namesIn(folder.path()), QStringList("in.pdf"));
}

void TestTools::badInputs_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("cause");
    const auto row = [](const char *name, const Maker &make, int exitCode, const char *cause) {
        QTest::newRow(name) << make << exitCode << QByteArray(cause);
    };
    const auto file = [](const QByteArray &bytes) -> Maker {
        return [bytes](const QString &path) { writeFile(path, bytes); };
    };
    const auto unreadable = [](const QString &path) {
        writeFile(path, threePages());
        QFile::setPermissions(path, {});
    };
    const auto pipe = [](const QString &path) { ::mkfifo(qPrintable(path), 0600); };
    row(
        "missing", [](const QString &) {}, 3, "No such file");
    row(
        "folder", [](const QString &path) { QDir().mkdir(path); }, 3, "is a folder");
    row("named pipe", pipe, 3, "is not a regular file");
    row("unreadable", unreadable, 3, "Permission denied");
    row("empty", file(""), 3, "is empty");
    row("text", file("This is not a PDF file.\n"), 3, "is not a PDF file");
    row("header only", file("%PDF-1.7\n"), 3, "is damaged");
    row("objects without catalog",
        file("%PDF-1.7\n1 0 obj\n<< /A 1 >>\nendobj\ntrailer\n<< /Size 2 >>\n"), 3, "is damaged");
    row("needs a password",
        file(pdfobjects::encrypted(threePages(), "user", "owner", pdfobjects::Assembling::Allowed)),
        6, "needs a password");
}

void TestTools::badInputs()
{
    QFETCH(Maker, make);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, cause);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    make(input);
    const auto isOneLine = [&](const ToolResult &result) {
        return result.errors.count('\n') == 1 &&
               result.errors.contains(input.toUtf8() + ": " + cause);
    };

    writeFile(folder.filePath("out.pdf"), stale);
    const ToolResult merged = mergePages(input, "1", folder.filePath("out.pdf"));
    QCOMPARE(merged.exitCode, exitCode);
    QVERIFY2(isOneLine(merged), merged.errors);
    QVERIFY(!QFile::exists(folder.filePath("out.pdf")));

    for (const int page : {1, 2, 3})
        writeFile(layoutPath(folder.path(), page), stale);
    const ToolResult converted = convertPages(input, folder.path());
    QCOMPARE(converted.exitCode, exitCode);
    QVERIFY2(isOneLine(converted), converted.errors);
    for (const int page : {1, 2, 3})
        QVERIFY(!QFile::exists(layoutPath(folder.path(), page)));

    const QString info = folder.filePath("info.txt");
    writeFile(info, stale);
    const ToolResult described = runTool("stavekit", {input, "-getinfo", "-outfile", info});
    QCOMPARE(described.exitCode, exitCode);
    QVERIFY2(isOneLine(described), described.errors);
    QVERIFY2(readFile(info).startsWith("NumberOfPages: \nError: "), readFile(info));
    QCOMPARE(readFile(info).count('\n'), 2);
}

void TestTools::unwritableOutputs_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("no such folder") << "/missing/out.pdf";
    QTest::newRow("name of a folder") << "/folder";
    QTest::newRow("name too long") << QString("/" + QString(300, QLatin1Char('n')));
    QTest::newRow("folder that may not be written") << "/closed/out.pdf";
    QTest::newRow("file as folder") << "/in.pdf/out.pdf";
}

void TestTools::unwritableOutputs()
{
    QFETCH(QString, output);
    const QTemporaryDir folder;
    writeFile(folder.filePath("in.pdf"), threePages());
    QDir(folder.path()).mkdir("folder");
    QDir(folder.path()).mkdir("closed", QFile::ReadOwner | QFile::ExeOwner);
    const QString input = folder.filePath("in.pdf");
    for (const QStringList &work : {QStringList{input, "-merge", "1", "-outfile"},
                                    QStringList{input, "-getinfo", "-outfile"}}) {
        const ToolResult result = runTool("stavekit", work + QStringList(folder.path() + output));
        QCOMPARE(result.exitCode, 5);
        QCOMPARE(result.errors.count('\n'), 1);
    }
    if (output != QLatin1String("/folder")) {
        const ToolResult result =
            runTool("quillrend", {"-htmlformat", input, folder.path() + output + "x.xml"});
        QCOMPARE(result.exitCode, 5);
        QCOMPARE(result.errors.count('\n'), 1);
    }
    QCOMPARE(namesIn(folder.path()), QStringList("in.pdf"));
}

void TestTools::fullDisk()
{
    // A limit on the size of files fails in the same place as a full disk.
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    QByteArray text;
    for (int i = 0; i < 400; ++i)
        text += showText(20, 190 - i * 0.4, "line " + QByteArray::number(i), 5);
    writeFile(input, simplePdf({text, text, text}));
    QList<ToolResult> results;
    {
        const Limited size(RLIMIT_FSIZE, 2000);
        results << mergePages(input, "1-3", folder.filePath("out.pdf"))
                << convertPages(input, folder.path());
        const Limited smaller(RLIMIT_FSIZE, 20);
        results << runTool("stavekit",
                           {input, "-getinfo", "-outfile", folder.filePath("info.txt")});
    }
    for (const ToolResult &result : results) {
        QCOMPARE(result.exitCode, 5);
        QCOMPARE(result.errors.count('\n'), 1);
    }
    QCOMPARE(namesIn(folder.path()), QStringList("in.pdf"));
}

void TestTools::infoFile()
{
    PdfBuilder file;
    const int root = file.reserve();
    const int info = file.add("<< /Title (Line one\\nNumberOfPages: 99) /Author "
                              "<FEFF00C4006D00FC> >>");
    const int page = file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 300 200] /Rotate 90 /UserUnit 2 >>");
    file.define(root, "<< /Type /Pages /Kids " + PdfBuilder::refs({page, page}) + " /Count 2 >>");
    const int catalog = file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " >>");
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QString output = folder.filePath("info.txt");
    writeFile(input, file.bytes(catalog, "/Info " + PdfBuilder::ref(info)));
    QCOMPARE(toolPageCount(input, output), 2);
    QCOMPARE(QString::fromUtf8(readFile(output)),
             QString::fromUtf8("NumberOfPages: 2\n"
                               "PDFVersion: 1.7\n"
                               "Encrypted: no\n"
                               "Repaired: no\n"
                               "Title: Line one NumberOfPages: 99\n"
                               "Author: Ämü\n"
                               "PageSize: 400.00 x 600.00\n"));
}

void TestTools::layoutFiles_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("texts"); // of the layout files in order, empty: empty file
    QTest::addColumn<bool>("hasImages");
    QTest::newRow("whole document") << QStringList() << QStringList{"one", "", "three"} << false;
    QTest::newRow("one page") << QStringList{"-f", "3", "-l", "3"} << QStringList{"three"} << true;
    QTest::newRow("from a page on") << QStringList{"-f", "2"} << QStringList{"", "three"} << true;
    QTest::newRow("up to a page") << QStringList{"-l", "2"} << QStringList{"one", ""} << true;
}

void TestTools::layoutFiles()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, texts);
    QFETCH(bool, hasImages);
    const QTemporaryDir folder;
    writeFile(folder.filePath("in.pdf"), threePages());
    // Of a longer document converted before, only the files of the new one's pages are replaced.
    writeFile(layoutPath(folder.path(), 4), stale);
    QCOMPARE(convertPages(folder.filePath("in.pdf"), folder.path(), options).exitCode, 0);
    QStringList expected = {"in.pdf", "split_pg_0004.htm"};
    for (int i = 0; i < texts.size(); ++i) {
        const QString path = layoutPath(folder.path(), i + 1);
        expected.append(QFileInfo(path).fileName());
        if (hasImages)
            expected.append(QFileInfo(path).completeBaseName() + ".png");
        const QByteArray span = "<meta charset=\"utf-8\"><span style=\"left:27;top:121;width:";
        QCOMPARE(readFile(path).startsWith(span), !texts[i].isEmpty());
        QCOMPARE(readFile(path).endsWith(">" + texts[i].toUtf8() + "</span>\n"),
                 !texts[i].isEmpty());
        QCOMPARE(readFile(path).isEmpty(), texts[i].isEmpty());
    }
    expected.sort();
    QCOMPARE(namesIn(folder.path()), expected);
    QCOMPARE(readFile(layoutPath(folder.path(), 4)), stale);
}

void TestTools::faultsOfFontsAreTold()
{
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    // More pages than one process takes.
    QByteArray bytes = simplePdf(QByteArrayList(40, showText(20, 100, "page")));
    const auto complaints = [&](const QByteArray &before, const QByteArray &after) {
        writeFile(input, bytes.replace(before, after));
        const ToolResult result = convertPages(input, folder.path(), {});
        return result.exitCode == 0 ? result.errors : "failed: " + result.errors;
    };
    QCOMPARE(complaints("page", "page"), QByteArray());
    const QByteArray unknown = complaints("page", "pag\001");
    QCOMPARE(unknown.count('\n'), 1);
    QVERIFY(unknown.contains("has letters without characters;"));
    const QByteArray missing = complaints("/Helvetica", "/Dinosaurs");
    QCOMPARE(missing.count('\n'), 2);
    QVERIFY(missing.contains(" font Dinosaurs;"));
}

void TestTools::imageShowsThePage()
{
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    writeFile(input, simplePdf({showText(60, 100, "seen") + "1 0 0 rg 50 50 60 30 re f"},
                               "/CropBox [30 20 200 150] /Rotate 90"));
    QCOMPARE(convertPages(input, folder.path(), {"-f", "1", "-l", "1"}).exitCode, 0);
    QImage image(folder.filePath("split_pg_0001.png"));
    image.setColorSpace({}); // the reference states none
    QCOMPARE(image.convertToFormat(QImage::Format_RGB888), pdfreader::renderPage(input, 0, 96));
}

void TestTools::pageWithoutImageKeepsItsText()
{
    // Too large for an image. What a repair would take here is not there, and not needed.
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    QByteArray bytes = simplePdf({QByteArray(filler, ' '), "", ""}, "/Filler 123456789");
    bytes.replace(bytes.indexOf("/Filler", bytes.indexOf("/Filler") + 1), 17, "/UserUnit 1234567");
    writeFile(input, bytes);
    const Limited memory(RLIMIT_DATA, filler);
    const ToolResult result = convertPages(input, folder.path(), {"-f", "1"});
    QCOMPARE(result.exitCode, 4);
    QCOMPARE(result.errors.count('\n'), 1);
    QVERIFY2(result.errors.contains(": page 2: has no image: "), result.errors);
    // The text does not depend on the image.
    for (int page = 1; page <= 3; ++page)
        QVERIFY(QFile::exists(layoutPath(folder.path(), page)));
    QVERIFY(!QFile::exists(folder.filePath("split_pg_0002.png")));
    QVERIFY(QFile::exists(folder.filePath("split_pg_0003.png")));
}

void TestTools::earlierPagesTakeNoMemory()
{
    // Each page takes some 50 MB.
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    writeFile(input, simplePdf(QByteArrayList(8, showText(20, 100, "one")),
                               "/Filler [" + QByteArray("0 ").repeated(1000000) + ']'));
    const Limited memory(RLIMIT_DATA, 200 << 20);
    const ToolResult result = convertPages(input, folder.path());
    QVERIFY2(result.exitCode == 0, result.errors);
}

void TestTools::tableInManySections()
{
    // Each entry has a section of its own, and every other object none: the contents but for page
    // 1's. Time with the square of the number would be more than a page may take.
    constexpr int pages = 120000;
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    const QByteArray bytes = simplePdf(QByteArrayList(pages, showText(20, 100, "page")));
    const qsizetype begin = bytes.lastIndexOf("\nxref\n") + 6;
    const qsizetype end = bytes.indexOf("trailer", begin);
    const QByteArrayList lines = bytes.mid(begin, end - begin).split('\n');
    QByteArray table;
    const qsizetype objects = lines.size() - 2; // less the section's first line and an empty one
    for (qsizetype number = 0; number < objects; ++number) {
        if (number < 5 || number % 2 == 0 || number == objects - 1)
            table += QByteArray::number(number) + " 1\n" + lines[number + 1] + '\n';
    }
    writeFile(input, bytes.left(begin) + table + bytes.mid(end));
    const ToolResult result = convertPages(input, folder.path(), {"-l", "1"});
    QVERIFY2(result.exitCode == 0, result.errors);
    QVERIFY(readFile(layoutPath(folder.path(), 1)).endsWith(">page</span>\n"));
}

void TestTools::namesAreBytes()
{
    const QTemporaryDir folder;
    for (const char *name : {"with blank.pdf", "quote\".pdf", "-dash.pdf", "no suffix",
                             "\xC3\xA9\xE2\x82\xAC.pdf", "dots.in.name.pdf"}) {
        const QString input = folder.filePath(QFile::decodeName(name));
        writeFile(input, threePages());
        const QString output = input + QStringLiteral(".out");
        QCOMPARE(mergePages(input, "3", output).exitCode, 0);
        QCOMPARE(pdfreader::pageTexts(output), QStringList("three"));
        QCOMPARE(runTool("quillrend", {"-htmlformat", input, output}).exitCode, 0);
        QVERIFY(QFile::exists(input + "_pg_0001.htm"));
    }
    // No file name in UTF-8, written through the shell because QString cannot hold it.
    const QString script =
        "in=$(printf 'in\\377.pdf') out=$(printf 'out\\377.pdf'); cp in.pdf $in && "
        "\"$1\" $in -merge 1 -outfile $out && test -s $out && rm $in $out";
    writeFile(folder.filePath("in.pdf"), threePages());
    QProcess shell;
    shell.setWorkingDirectory(folder.path());
    shell.start("sh", {"-c", script, "sh",
                       QCoreApplication::applicationDirPath() + QStringLiteral("/stavekit")});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.exitCode(), 0);
}

void TestTools::inputIsNeverOverwritten()
{
    const QTemporaryDir folder;
    const QString input = folder.filePath("split_pg_0001.htm");
    const QString link = folder.filePath("link.pdf");
    writeFile(input, threePages());
    QVERIFY(QFile::link(input, link));
    for (const QString &output : {input, link}) {
        QCOMPARE(mergePages(input, "1", output).exitCode, 2);
        QCOMPARE(runTool("stavekit", {input, "-getinfo", "-outfile", output}).exitCode, 2);
    }
    QCOMPARE(convertPages(input, folder.path()).exitCode, 2);
    QCOMPARE(readFile(input), threePages());
}

SENDRIVO_TEST_MAIN(TestTools, QCoreApplication)
#include "tst_tools.moc"
