// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/commandline.h"
#include "pdf/layout/repairingreader.h"
#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "tests/support/batchrunner.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"
#include "tests/support/windowcomparison.h"

#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <qpdf/QPDF.hh>
#include <tuple>

namespace {

const QList<SampleInvoice> invoices = {
    {"20/1/7", "Alder & <b>", 2}, {"INV-2", "Cobalt", 3, true}, {"INV-3", "Alder & <b>", 1}};

QString path(const QString &name)
{
    return QDir::current().filePath(name);
}

} // namespace

/// sendrivo-batch as its users call it, with the real program.
class TestBatch : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> output;

    [[nodiscard]] QStringList splitArguments(const QStringList &further,
                                             const QString &rule = "number") const
    {
        return QStringList{"--rule", rule, "--output", output->path()} + further;
    }

private slots:
    /// The rules are stored with the program itself, as found on a page of the sample.
    void initTestCase()
    {
        QVERIFY(writeSamplePdf(path("in.pdf"), invoices));
        const ToolResult listed = batch({"--fragments", "1", "--json", path("in.pdf")});
        QCOMPARE(listed.exitCode, 0);
        for (const QJsonObject &fragment : jsonLines(listed.output)) {
            const QString text = fragment["text"].toString();
            const QString place =
                QString("%1,%2").arg(fragment["left"].toInt()).arg(fragment["top"].toInt());
            const QString rule = text == "20/1/7"        ? "number"
                                 : text == "Alder & <b>" ? "customer"
                                                         : QString();
            if (rule.isEmpty())
                continue;
            const ToolResult saved =
                batch({"--save-rule", rule, place, "--fragments", "1", path("in.pdf")});
            QCOMPARE(saved.exitCode, 0);
        }
        QCOMPARE(batch({"--list-rules"}).output, QByteArray("customer\nnumber\n"));
        const QSettings settings(settingsFileName(), QSettings::IniFormat);
        const Subtext rule = readRule(settings, "number");
        QCOMPARE(readRule(settings, "customer").text, QString("Alder & &lt;b&gt;"));
        QVERIFY(rule.width > 10 && rule.height > 5);
        QCOMPARE(rule.text, QString("20/1/7"));
        QCOMPARE(currentRuleName(settings), QString("number"));
        QVERIFY(batch({"--rule", "customer", "--output", ".", "--dry-run", path("in.pdf")})
                    .output.startsWith("1-2\tAlder & <b>\t"));
        for (const char *name : {"number", "zeph", "2024/May"})
            QCOMPARE(batch({"--save-rule", name, "5,5"}).exitCode, 2);
        QCOMPARE(batch({"--save-rule", "new", "5,5", "--fragments", "1", path("in.pdf")}).exitCode,
                 2);
    }

    void init() { output = std::make_unique<QTemporaryDir>(); }

    /// Window and program give the same files, to the byte.
    void sameAsWindow_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<int>("method");
        QTest::newRow("text changes") << "number" << 0;
        QTest::newRow("text is there") << "number" << 1;
        QTest::newRow("grouped") << "customer" << 2;
    }
    void sameAsWindow()
    {
        QFETCH(QString, rule);
        QFETCH(int, method);
        QStringList inputs = {path("in.pdf"), path("other/in.pdf"), path("turned.v2.pdf"),
                              path("open.pdf"), path("scan.pdf")};
        QDir::current().mkpath("other");
        QVERIFY(writeSamplePdf(inputs[1], {{"20/1/7", "Alder & <b>", 2}, {"B", "C", 2}}));
        QVERIFY(writeSamplePdf(inputs[2], invoices, SampleLayout::Rotated90));
        encryptSamplePdf(inputs[0], inputs[3], {});
        writeFile(inputs[4], simplePdf({"0 0 m 9 9 l S", "0 0 m 9 9 l S"}));
        QCOMPARE(differenceFromWindow(inputs, rule, method, output->path()), QString());
    }

    /// Help, manual page and completion name the same options.
    void optionsEverywhere()
    {
        const auto optionsIn = [](QString text) {
            static const QRegularExpression option("(?<![\\w-])--[a-z][a-z-]*[a-z]");
            QSet<QString> found;
            auto match = option.globalMatch(text.remove('\\'));
            while (match.hasNext())
                found.insert(match.next().captured());
            return found;
        };
        QSet<QString> described;
        for (const OptionDescription &option : optionDescriptions())
            described.insert(option.name);
        QVERIFY(described.size() > 15);
        QCOMPARE(optionsIn(QString::fromUtf8(batch({"--help"}).output)), described);
        const QString source = SENDRIVO_SOURCE;
        QCOMPARE(optionsIn(QString::fromUtf8(readFile(source + "/docs/sendrivo-batch.1"))),
                 described);
        QCOMPARE(optionsIn(QString::fromUtf8(readFile(source + "/packaging/sendrivo-batch.bash"))),
                 described);
    }

    void namesAndTexts_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QStringList>("names");
        const auto row = [](const char *name, const QStringList &options,
                            const QStringList &names) { QTest::newRow(name) << options << names; };
        row("template", {"--name", "{n:03} {first}-{last:2} {pages} {{{base}}} {range}.pdf"},
            {"in/001 1-02 2 {in} 1-2.pdf", "in/002 3-05 3 {in} 3-5.pdf",
             "in/003 6-06 1 {in} 6.pdf"});
        row("same names are numbered", {"--name", "{base}", "--method", "2"},
            {"in/in (2).pdf", "in/in (3).pdf", "in/in (4).pdf", "in/in.pdf"});
        row("matching texts", {"--match", "INV-(\\d+)"},
            {"in/1   in 1-2.pdf", "in/2 2 in 3-5.pdf", "in/3 3 in 6.pdf"});
        row("matching marks", {"--rule", "customer", "--match", "& (<.>)"},
            {"in/1 &lt;b&gt; in 1-6.pdf"});
        row("marks in names of one's own",
            {"--rule", "customer", "--match", "& (<.>)", "--name", "{text}"}, {"in/<b>.pdf"});
        row("nothing matches", {"--match", "^X"}, {"in/1   in 1-6.pdf"});
    }
    void namesAndTexts()
    {
        QFETCH(QStringList, options);
        QCOMPARE(batch(splitArguments(options + QStringList{path("in.pdf")})).exitCode, 0);
        QTEST(namesIn(output->path()), "names");
    }

    /// Of two texts near the position the nearest is taken, and none beyond the tolerance.
    void tolerance()
    {
        const auto page = [](double x, double y) {
            return showText(x, y, "here") + showText(x + 60, y, "far");
        };
        writeFile(path("jitter.pdf"), simplePdf({page(30, 100), page(31.5, 98.5), page(36, 100)}));
        const QJsonObject first =
            jsonLines(batch({"--fragments", "1", "--json", path("jitter.pdf")}).output).value(0);
        const QString place = QString("%1,%2").arg(first["left"].toInt()).arg(first["top"].toInt());
        const auto found = [&](const QString &px) {
            return batch({"--position", place, "--tolerance", px, "--method", "2", "--dry-run",
                          "--output", output->path(), path("jitter.pdf")})
                .output.count('\n');
        };
        QCOMPARE(found("0"), 1);
        QCOMPARE(found("2"), 2);
        QCOMPARE(found("8"), 3);
        QCOMPARE(namesIn(output->path()), QStringList());
    }

    void existingFiles_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("isReplaced");
        const QStringList all = {"in/1 20-1-7 in 1-2.pdf", "in/2 INV-2 in 3-5.pdf",
                                 "in/3 INV-3 in 6.pdf"};
        QTest::newRow("overwrite") << "overwrite" << 0 << all << true;
        QTest::newRow("overwrite, folder in the way")
            << "overwrite" << 5 << QStringList{all[1]} << false;
        QTest::newRow("fail") << "fail" << 5 << QStringList{all[1]} << false;
        QTest::newRow("fail, none there") << "fail" << 0 << all << true;
        QTest::newRow("rename") << "rename" << 0
                                << QStringList{all[0], "in/2 INV-2 in 3-5 (2).pdf", all[1], all[2]}
                                << false;
    }
    void existingFiles()
    {
        QFETCH(QString, mode);
        QFETCH(bool, isReplaced);
        QDir(output->path()).mkdir("in");
        const QString there = output->filePath("in/2 INV-2 in 3-5.pdf");
        const QByteArray tag = QTest::currentDataTag();
        if (!tag.endsWith("none there"))
            writeFile(there, "mine");
        if (tag.endsWith("folder in the way"))
            QDir(output->path()).mkdir("in/3 INV-3 in 6.pdf");
        // The second run is after one that was killed while it published, before it reported.
        for (const bool isSecond : {false, true}) {
            QFile::remove(path("nothing"));
            QStringList options = {"--existing", mode, path("in.pdf")};
            if (isSecond) {
                QFile::remove(output->filePath("in/1 20-1-7 in 1-2.pdf"));
                options += QStringList{"--resume", "--report", path("nothing")};
            }
            const ToolResult result = batch(splitArguments(options));
            QTEST(result.exitCode, "exitCode");
            QTEST(namesIn(output->path()), "names");
            QCOMPARE(readFile(there) != "mine", isReplaced);
        }
    }

    /// Exit codes and complaints; a call that is wrong leaves nothing.
    void failures_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("complaint");
        const auto row = [](const char *name, const QStringList &arguments, int exitCode,
                            const QByteArray &complaint) {
            QTest::newRow(name) << arguments << exitCode << complaint;
        };
        row("no such rule", {"--rule", "none", "in.pdf"}, 2, "has no rule \"none\"");
        row("bad template", {"--rule", "number", "--name", "{x}", "in.pdf"}, 2, "no field {x}");
        row("bad expression", {"--rule", "number", "--match", "(", "in.pdf"}, 2, "--match");
        row("no folder", {"--rule", "number", "--output", "none", "in.pdf"}, 5, "existing folder");
        row("missing input", {"--rule", "number", "none.pdf"}, 3, "none.pdf: No such file");
        row("damaged", {"--rule", "number", "bad.pdf"}, 3, "bad.pdf: is not a PDF file");
        row("password", {"--rule", "number", "secret.pdf"}, 6, "needs a password");
        row("one of two", {"--rule", "number", "bad.pdf", "in.pdf"}, 4, "bad.pdf");
        row("half a scan", {"--position", "1,1", "--tolerance", "900", "mixed.pdf"}, 0,
            "without text layer: 2-3");
        row("no characters", {"--position", "40,121", "unknown.pdf"}, 0,
            "letters without characters on pages 1-2");
        row("expression without end",
            {"--position", "1,1", "--tolerance", "900", "--match", "^(a+)+$", "long.pdf"}, 3,
            "long.pdf: page 2: --match takes too many steps");
        row("nothing there", {"--position", "1,1", "in.pdf"}, 0, "no text at the position");
        row("no settings", {"--position", "1,1", "--settings=x", "--output-options", "in.pdf"}, 2,
            "x: cannot be read");
        row("unwritable folder", {"--rule", "number", "--output", "/proc", "in.pdf"}, 5, "/proc");
        row("report is an input", {"--rule", "number", "--report", "in.pdf", "in.pdf"}, 2,
            "in.pdf: is read");
        row("report is no report", {"--rule", "number", "--report", "data.json", "in.pdf"}, 2,
            "data.json: exists and is not");
        row("document is another input",
            {"--rule", "number", "--output", ".", "in.pdf", "in/2 INV-2 in 3-5.pdf"}, 5,
            "in/2 INV-2 in 3-5.pdf: is itself");
        row("locked folder", {"--rule", "number", "file.pdf"}, 5, "is a file where a folder");
    }
    void failures()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, complaint);
        writeFile(path("bad.pdf"), "nothing");
        writeFile(path("data.json"), "{\"cause\":\"mine\"}");
        QDir().mkdir("in");
        QFile::copy("in.pdf", "in/2 INV-2 in 3-5.pdf");
        writeFile(output->filePath("file"), "in the way");
        const QByteArray line = "0 0 m 9 9 l S";
        const QByteArray manyWays = QByteArray(40, 'a') + "b";
        writeFile(path("long.pdf"),
                  simplePdf({showText(30, 100, "a"), showText(30, 100, manyWays, 6)}));
        writeFile(path("mixed.pdf"), simplePdf({showText(30, 100, "text"), line, line}));
        writeFile(path("unknown.pdf"),
                  simplePdf({showText(30, 100, "\\001"), showText(30, 100, "\\002")}));
        encryptSamplePdf(path("in.pdf"), path("secret.pdf"), {"password"});
        if (!arguments.contains("--output"))
            arguments = QStringList{"--output", output->path()} + arguments;
        const ToolResult result = batch(arguments);
        QTEST(result.exitCode, "exitCode");
        QVERIFY2(result.errors.contains(complaint), result.errors);
        QCOMPARE(result.errors.count('\n'), 1);
        if (result.exitCode != 0 && result.exitCode != 4)
            QCOMPARE(namesIn(output->path()), QStringList{"file"});
    }

    /// Options that cannot be read never give documents that are less protected than asked for.
    void unreadableOptions_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QByteArray>("complaint"); // none: they can be read
        const auto row = [](const QByteArray &settings, const QByteArray &complaint) {
            QTest::newRow(settings.simplified()) << settings << complaint;
        };
        row("[Secur]\nUsrPwd=a,b\n", "Secur/UsrPwd: is not one text");
        row("[Secur]\nOwrPwd=@Invalid()\n", "Secur/OwrPwd: is not one text");
        row("[Secur]\nUsrPwd=caf\xE9\n", "is not UTF-8");
        row("[Secur]\nUsrPwd=a\\bc\n", "Secur/UsrPwd: holds an escape");
        row("[Secur]\nusrpwd=secret\n", "Secur/usrpwd: is spelt");
        row("[Secur]\nUsrPwd=a\nAllowPri=no\n", "Secur/AllowPri: is neither Ok nor No");
        row("[Secur]\nUsrPwd=a\nAllowCop=\n", "Secur/AllowCop: is neither Ok nor No");
        row("[Annot]\nTit=Invoices, May\n", "Annot/Tit: is not one text");
        row("[Secur]\nUsrPwd secret\n", "cannot be read as settings");
        row("[Secur]\nUsrPwd=\"a,b\"\nAllowPri=No\n", "");
    }
    void unreadableOptions()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QByteArray, complaint);
        writeFile(path("options.ini"), settings);
        const ToolResult result =
            batch({"--position", "1,1", "--output", output->path(), "--settings=options.ini",
                   "--output-options", path("in.pdf")});
        QCOMPARE(result.exitCode, complaint.isEmpty() ? 0 : 2);
        QVERIFY2(result.errors.contains(complaint) && result.errors.count('\n') == 1,
                 result.errors);
        QCOMPARE(namesIn(output->path()).isEmpty(), !complaint.isEmpty());
    }

    /// Document information, also in XMP, and passwords from the settings.
    void outputOptions()
    {
        const QByteArray kept = "pdf:Producer=\"\"";
        const QByteArray xmp = "<rdf:RDF><!-- <a " + kept + "> --><rdf:Description x" + kept +
                               " pdf:Producer = 'Old>'><dc:title><rdf:Alt><rdf:li>Old</rdf:li>"
                               "</rdf:Alt></dc:title><dc:titled/>" +
                               kept + "</rdf:Description></rdf:RDF>";
        PdfBuilder builder;
        const int tree = builder.reserve();
        const int page = builder.add("<< /Type /Page /MediaBox [0 0 9 9] /Parent " +
                                     PdfBuilder::ref(tree) + " >>");
        builder.define(tree, "<< /Type /Pages /Count 1 /Kids " + PdfBuilder::refs({page}) + " >>");
        const int metadata = builder.addStream(xmp, "/Type /Metadata /Subtype /XML");
        const int catalog = builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) +
                                        " /Metadata " + PdfBuilder::ref(metadata) + " >>");
        writeFile(path("xmp.pdf"), builder.bytes(catalog));
        const QString settings = output->filePath("options.ini");
        const QStringList arguments = {
            "--position",       "1,1",      "--output", output->path(), "--settings", settings,
            "--output-options", "--method", "3",        path("xmp.pdf")};
        const QString written = output->filePath("xmp/1   xmp.pdf");
        const auto open = [&](const char *password) {
            QPDF pdf;
            pdf.setSuppressWarnings(true);
            pdf.processFile(written.toUtf8().constData(), password);
            const auto data = pdf.getRoot().getKey("/Metadata").getStreamData();
            return std::make_tuple(pdf.getTrailer().getKey("/Info").getKey("/Title").getUTF8Value(),
                                   QByteArray(reinterpret_cast<const char *>(data->getBuffer()),
                                              static_cast<qsizetype>(data->getSize())),
                                   pdf.allowPrintHighRes(), pdf.allowExtractAll());
        };
        writeFile(settings, "[Annot]\nTit=A & B\nPro=P\n[Image]\nColorRes=72\n"
                            "[Secur]\nAllowPri=No\n");
        const ToolResult plain = batch(arguments);
        QCOMPARE(plain.exitCode, 0);
        QCOMPARE(plain.errors.count("options are not applied"), 1);
        QCOMPARE(plain.errors.count("permissions are not applied"), 1);
        const auto [title, metadataText, mayPrint, mayCopy] = open("");
        QCOMPARE(title, std::string("A & B"));
        QVERIFY2(metadataText.contains(">A &amp; B<") && !metadataText.contains("Old") &&
                     metadataText.contains("<dc:titled/>") && metadataText.count(kept) == 3,
                 metadataText);
        QVERIFY(mayPrint && mayCopy);

        writeFile(settings, "[Secur]\nUsrPwd=secret\nAllowPri=No\n");
        QCOMPARE(batch(arguments).exitCode, 0);
        QVERIFY_THROWS_EXCEPTION(QPDFExc, open(""));
        QVERIFY(!std::get<2>(open("secret")));
        QVERIFY(std::get<3>(open("secret")));

        // A password of our own does not lift what the input forbids.
        QDir::current().mkdir("forbidden");
        encryptSamplePdf(path("xmp.pdf"), path("forbidden/xmp.pdf"), {{}, true, false});
        writeFile(settings, "[Secur]\nUsrPwd=secret\n");
        QCOMPARE(batch(arguments.mid(0, 9) + QStringList{path("forbidden/xmp.pdf")}).exitCode, 0);
        QVERIFY(!std::get<2>(open("secret")));
        QVERIFY(std::get<3>(open("secret")));

        writeFile(settings, "[Secur]\nOwrPwd=secret\n[Annot]\nPDFA=Ok\n");
        QCOMPARE(batch(arguments).exitCode, 2);
    }

    /// Lists, the report, and a second run that has nothing left to do.
    void reportAndResume()
    {
        QFile::copy(path("in.pdf"), path("line\nfeed.pdf"));
        writeFile(path("list"), (path("in.pdf") + '\0' + path("line\nfeed.pdf")).toUtf8());
        writeFile(path("bad.pdf"), "nothing");
        const QString report = output->filePath("report");
        const QStringList arguments = splitArguments(
            {"--report", report, "--resume", "--files-from", path("list"), path("bad.pdf")});
        QCOMPARE(batch(arguments).exitCode, 4);
        QMap<QString, QJsonObject> entries;
        for (const QJsonObject &entry : jsonLines(readFile(report)))
            entries.insert(QFileInfo(entry["input"].toString()).fileName(), entry);
        QCOMPARE(entries.keys(), QStringList({"bad.pdf", "in.pdf", "line\nfeed.pdf"}));
        const QJsonObject good = entries["in.pdf"];
        QCOMPARE(good["pages"].toInt(), 6);
        const QJsonArray documents = good["documents"].toArray();
        QCOMPARE(documents.size(), 3);
        const QString second = documents[1]["file"].toString();
        QCOMPARE(documents[1]["bytes"].toInteger(), QFileInfo(second).size());
        QCOMPARE(entries["bad.pdf"]["verdict"].toString(), QString("failed"));

        // What is not there any more is written again, what was cut off means nothing.
        QFile::remove(second);
        QFile cut(report);
        QVERIFY(cut.open(QIODevice::Append));
        cut.write("{\"input\":");
        cut.close();
        const QByteArray before = readFile(report);
        const QByteArray planned = batch(arguments + QStringList{"--dry-run"}).output;
        QVERIFY2(planned.contains("3-5") && !planned.contains("feed"), planned);
        QCOMPARE(readFile(report), before);
        QCOMPARE(batch(arguments).exitCode, 4);
        QVERIFY(QFile::exists(second));
        QCOMPARE(jsonLines(readFile(report)).size(), 3 + 1 + 2);

        // Nothing to do is no reason to forget what was done.
        const QByteArray after = readFile(report);
        writeFile(path("list"), "\n");
        QCOMPARE(batch(splitArguments({"--report", report, "--files-from", path("list")})).exitCode,
                 2);
        QCOMPARE(readFile(report), after);

        // Another spelling of the folder changes nothing, other output options do.
        const auto entriesAfter = [&](const QStringList &further) {
            const QStringList call = {
                "--position",         "1,1",      "--settings", path("o.ini"), "--output",
                output->path() + "/", "--report", path("r"),    "--resume",    path("in.pdf")};
            return batch(call + further).exitCode == 0 ? jsonLines(readFile(path("r"))).size() : 0;
        };
        writeFile(path("o.ini"), "[Annot]\nTit=A\n");
        QCOMPARE(entriesAfter({"--output-options"}), 1);
        QCOMPARE(entriesAfter({"--output-options", "--output", output->path()}), 1);
        writeFile(path("o.ini"), "[Annot]\nTit=AB\n");
        QCOMPARE(entriesAfter({"--output-options"}), 2);
    }
};

SENDRIVO_TEST_MAIN(TestBatch, QApplication)
#include "tst_batch.moc"
