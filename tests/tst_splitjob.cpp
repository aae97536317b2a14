// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "split/layoutscan.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"
#include "tests/support/windowdriver.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

const SampleInvoice anchor = {"INV-1", "Anchor & Sons", 1, false};

QString path(const QString &name)
{
    return QDir::current().filePath(name);
}

QString inAppFolder(const char *name)
{
    return QCoreApplication::applicationDirPath() + '/' + name;
}

/// Stores rules "number" and "customer", found as a person finds them: on the page of a sample.
void storeRules()
{
    const QString sample = path("sample.pdf");
    QVERIFY(writeSamplePdf(sample, {anchor}));
    QCOMPARE(
        QProcess::execute(inAppFolder("quillrend"), {"-htmlformat", sample, path("sample.xml")}),
        0);
    QFile layout(path("sample_pg_0001.htm"));
    QVERIFY(layout.open(QIODevice::ReadOnly));
    QSettings settings(settingsFileName(), QSettings::IniFormat);
    for (const QString &line : layoutFileLines(QString::fromUtf8(layout.readAll()))) {
        const Subtext fragment = parseFragment(line);
        if (fragment.text == anchor.number)
            saveRule(settings, "number", fragment);
        if (fragment.text == anchor.customer)
            saveRule(settings, "customer", fragment);
    }
    saveRule(settings, "nowhere", {1, 1, 1, 1, QString()});
    QCOMPARE(ruleNames(settings).size(), 3);
}

/// What is in an output folder: "NAME: 1 2 3" for each document in the order of the documents,
/// with the page numbers that its pages have in `input`.
QStringList documents(const QString &folder, const QString &input)
{
    const QStringList inputPages = pdfreader::pageTexts(input);
    QMap<int, QString> descriptions;
    for (const QFileInfo &file : QDir(folder).entryInfoList(QDir::Files | QDir::Hidden)) {
        QStringList pages;
        for (const QString &text : pdfreader::pageTexts(file.filePath()))
            pages.append(QString::number(inputPages.indexOf(text) + 1));
        descriptions.insert(file.fileName().section(' ', 0, 0).toInt(),
                            file.fileName() + ": " + pages.join(' '));
    }
    return descriptions.values();
}

} // namespace

/// The whole way from the list of files to the documents, with the real window and tools.
class TestSplitJob : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> output;

    [[nodiscard]] QStringList documentsOf(const QString &input) const
    {
        return documents(output->filePath(QFileInfo(input).baseName()), input);
    }

    void choose(const WindowDriver &driver, const QString &rule, int method) const
    {
        driver.widget<QComboBox>("comboBox_rule")->setCurrentText(rule);
        driver.widget<QComboBox>("comboBox_method")->setCurrentIndex(method);
        driver.setOutputFolder(output->path());
    }

private slots:
    void initTestCase() { storeRules(); }

    void init() { output = std::make_unique<QTemporaryDir>(); }

    void oneFile_data()
    {
        QTest::addColumn<QList<SampleInvoice>>("invoices");
        QTest::addColumn<QString>("rule");
        QTest::addColumn<int>("method");
        QTest::addColumn<QString>("base");
        QTest::addColumn<QStringList>("expected");

        const QList<SampleInvoice> batch = {
            {"INV-1", "Ash", 2}, {"INV-2", "Birch", 3}, {"INV-3", "Ash", 1}};
        const auto row = [](const char *name, const QList<SampleInvoice> &invoices,
                            const char *rule, int method, const QStringList &expected,
                            const QString &base = "in") {
            QTest::newRow(name) << invoices << rule << method << base << expected;
        };
        row("by change of number", batch, "number", 0,
            {"1 INV-1 in 1-2.pdf: 1 2", "2 INV-2 in 3-5.pdf: 3 4 5", "3 INV-3 in 6.pdf: 6"});
        row("by presence of number", {{"A", "C", 3, true}, {"A", "C", 1}, {"B", "C", 2, true}},
            "number", 1, {"1 A in 1-3.pdf: 1 2 3", "2 A in 4.pdf: 4", "3 B in 5-6.pdf: 5 6"});
        row("grouped by customer", batch, "customer", 2,
            {"1 Ash in.pdf: 1 2 6", "2 Birch in.pdf: 3 4 5"});
        row("nothing at the position", batch, "nowhere", 0, {"1   in 1-6.pdf: 1 2 3 4 5 6"});
        row("slash and quotes", {{"20/1/7", "Say \"Hi\"", 1}, {"20/1/8", "Say \"\"\"", 1}},
            "customer", 0, {"1 Say \"Hi\" in 1.pdf: 1", "2 Say \"\"\" in 2.pdf: 2"});
        row("slash", {{"20/1/7", "A", 1}, {"20/1/8", "A", 1}}, "number", 0,
            {"1 20-1-7 in 1.pdf: 1", "2 20-1-8 in 2.pdf: 2"});
        row("not Latin",
            {{"1", QString::fromUtf8("Счёт №7"), 1}, {"2", QString::fromUtf8("請求書"), 1}},
            "customer", 0,
            {QString::fromUtf8("1 Счёт №7 in 1.pdf: 1"),
             QString::fromUtf8("2 請求書 in 2.pdf: 2")});
        row("ampersands and brackets", {{"1", "AT&T <b>&amp;", 1}}, "customer", 0,
            {"1 AT&T &lt;b&gt;&amp;amp; in 1.pdf: 1"});
        const QString longBase(190, 'b');
        row("longer than a file name", {{"1", QString(25, QChar(0x66f8)), 1}}, "customer", 0,
            {"1 " + QString(18, QChar(0x66f8)) + ' ' + longBase + " 1.pdf: 1"}, longBase);
        row("blanks and quotes in the path", batch, "customer", 2,
            {"1 Ash my  \"in\".pdf: 1 2 6", "2 Birch my  \"in\".pdf: 3 4 5"}, "my  \"in\"");
    }
    void oneFile()
    {
        QFETCH(QList<SampleInvoice>, invoices);
        QFETCH(QString, rule);
        QFETCH(int, method);
        QFETCH(QString, base);
        const QString input = path(base + ".pdf");
        QVERIFY(writeSamplePdf(input, invoices));
        WindowDriver driver;
        QVERIFY(driver.add({input}));
        choose(driver, rule, method);
        QVERIFY(driver.split());
        QTEST(documentsOf(input), "expected");
        QCOMPARE(driver.cell(0, 3), QStringLiteral("Succeed"));
    }

    void progressOfABatch()
    {
        const QStringList inputs = {path("one.pdf"), path("two.pdf")};
        for (const QString &input : inputs)
            QVERIFY(writeSamplePdf(input, {{"X", "C", 2}, {"Y", "C", 1}}));
        WindowDriver driver;
        QVERIFY(driver.add(inputs));
        choose(driver, "number", 0);
        const QString folder = output->path();
        QStringList expected = driver.progress();
        for (int round = 0; round < 2; ++round) { // a second batch starts anew
            QVERIFY(driver.split());
            expected << "Conversion Start:";
            for (const QString &name : {QString("one"), QString("two")}) {
                expected << path(name + ".pdf") << "Analyzing page 1"
                         << "Analyzing page 2"
                         << "Analyzing page 3";
                expected << "Generating " + folder + '/' + name + "/1 X " + name + " 1-2.pdf";
                expected << "Generating " + folder + '/' + name + "/2 Y " + name + " 3.pdf";
            }
            expected << "Conversion Finished.";
            QCOMPARE(driver.progress(), expected);
        }
    }

    /// A file that cannot be read costs only itself.
    void badFilesAmongGoodOnes()
    {
        const QString good = path("good.pdf");
        const QString last = path("last.pdf");
        QVERIFY(writeSamplePdf(good, {{"A", "C", 2}, {"B", "C", 2}}));
        QVERIFY(QFile::copy(good, last));
        encryptSamplePdf(good, path("secret.pdf"), {"password"});
        encryptSamplePdf(good, path("open.pdf"), {});
        QFile damaged(path("damaged.pdf"));
        QVERIFY(damaged.open(QIODevice::WriteOnly));
        damaged.write("%PDF-1.4\n1 0 obj <</Type /Catalog");
        damaged.close();
        WindowDriver driver;
        QVERIFY(driver.add({good, path("secret.pdf"), damaged.fileName(), path("missing.pdf"),
                            path("open.pdf"), last}));
        QCOMPARE(driver.column(1), QStringList({"4", "", "", "", "4", "4"}));
        choose(driver, "number", 0);
        QVERIFY(driver.split());
        QCOMPARE(driver.column(3),
                 QStringList({"Succeed", "Failed", "Failed", "Failed", "Succeed", "Succeed"}));
        for (const QString &name : {QString("good"), QString("open"), QString("last")})
            QCOMPARE(
                documents(output->filePath(name), good),
                QStringList({"1 A " + name + " 1-2.pdf: 1 2", "2 B " + name + " 3-4.pdf: 3 4"}));
        for (const QString &name : {QString("secret"), QString("damaged"), QString("missing")})
            QCOMPARE(documents(output->filePath(name), good), QStringList());
    }

    /// Every page of every file lands in exactly one document, in the order of the file.
    void conservation_data()
    {
        QTest::addColumn<int>("method");
        QTest::newRow("by change") << 0;
        QTest::newRow("by presence") << 1;
    }
    void conservation()
    {
        QFETCH(int, method);
        QList<SampleInvoice> invoices;
        for (int k = 0; k < 20; ++k)
            invoices.append({QString("N%1").arg(k), "C", 1 + k * k % 4, k % 3 == 0});
        const QString input = path("many.pdf");
        QVERIFY(writeSamplePdf(input, invoices));
        WindowDriver driver;
        QVERIFY(driver.add({input}));
        choose(driver, "number", method);
        QVERIFY(driver.split());
        QStringList found;
        for (const QString &document : documentsOf(input))
            found += document.section(": ", 1).split(' ');
        QStringList all;
        for (int page = 1; page <= pdfreader::pageTexts(input).size(); ++page)
            all.append(QString::number(page));
        QCOMPARE(found, all);
    }

    void refusedStarts_data()
    {
        QTest::addColumn<bool>("hasFile");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("message");
        const QString noFolder = "Invalid order: Please specify an output folder.";
        QTest::newRow("no files") << false << "."
                                  << "Empty input: Please choose files to split.";
        QTest::newRow("no folder") << true << "" << noFolder;
        QTest::newRow("missing folder") << true << "/no/such/folder" << noFolder;
        QTest::newRow("a file as folder") << true << path("sample.pdf") << noFolder;
    }
    void refusedStarts()
    {
        QFETCH(bool, hasFile);
        QFETCH(QString, folder);
        WindowDriver driver;
        if (hasFile)
            QVERIFY(driver.add({path("sample.pdf")}));
        driver.setOutputFolder(folder);
        const QStringList before = driver.progress();
        QString shown;
        acceptMessageBox(&shown);
        driver.click("runButton");
        QTEST(shown, "message");
        QCOMPARE(driver.progress(), before);
        const QString field = driver.widget<QLineEdit>("outputfolderEdit")->text();
        QCOMPARE(field, hasFile ? QString() : folder);
        QVERIFY(driver.button("removeButton")->isEnabled());
    }

    /// Rows are addressed by number while a batch runs.
    void guardedWhileRunning()
    {
        const QStringList inputs = {path("one.pdf"), path("two.pdf")};
        WindowDriver driver;
        QVERIFY(driver.add(inputs));
        choose(driver, "number", 0);
        driver.click("runButton");
        driver.click("runButton");
        for (const char *name :
             {"removeButton", "removeallButton", "pushButton_up", "pushButton_down"})
            QVERIFY2(!driver.button(name)->isEnabled(), name);
        driver.clickHeader(0);
        driver.clickHeader(0);
        driver.window.setremove();
        driver.window.setremoveall();
        driver.window.setrowdown();
        QCOMPARE(driver.column(0), inputs);
        QVERIFY(driver.add({path("sample.pdf")})); // adding files goes on
        QTRY_VERIFY(driver.progress().contains("Conversion Finished."));
        QCOMPARE(driver.progress().filter("Conversion Start:").size(), 1);
        for (const char *name : {"openfileButton", "removeButton", "runButton"})
            QVERIFY2(driver.button(name)->isEnabled(), name);
        QCOMPARE(driver.cell(0, 3) + driver.cell(1, 3), QStringLiteral("SucceedSucceed"));
    }

    void outputFolderLostBetweenFiles()
    {
        const QStringList inputs = {path("one.pdf"), path("two.pdf"), path("sample.pdf")};
        WindowDriver driver;
        QVERIFY(driver.add(inputs));
        choose(driver, "number", 0);
        driver.click("runButton");
        QString shown;
        acceptMessageBox(&shown);
        driver.setOutputFolder(QString()); // the first file is under way
        QTRY_VERIFY(!shown.isEmpty());
        QTRY_VERIFY(driver.button("removeButton")->isEnabled());
        QVERIFY(!driver.progress().contains(inputs[1]));

        choose(driver, "number", 0);
        QVERIFY(driver.split()); // goes on with the second file
        QCOMPARE(driver.progress().filter("Conversion Start:").size(), 1);
        QCOMPARE(driver.cell(1, 3) + driver.cell(2, 3), QStringLiteral("SucceedSucceed"));
    }

    /// What a newcomer sees first.
    void shippedExample_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<int>("method");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("invoices") << "Invoice number" << 0
                                  << QStringList{"1 INV-2041 invoices 1-2.pdf: 1 2",
                                                 "2 INV-2042 invoices 3.pdf: 3",
                                                 "3 INV-2043 invoices 4-7.pdf: 4 5 6 7",
                                                 "4 INV-2044 invoices 8.pdf: 8",
                                                 "5 INV-2045 invoices 9-11.pdf: 9 10 11",
                                                 "6 INV-2046 invoices 12.pdf: 12"};
        QTest::newRow("recipients") << "Recipient" << 2
                                    << QStringList{"1 Alder & Wren Ltd invoices.pdf: 1 2 8",
                                                   "2 Cobalt Theatre invoices.pdf: 3 12",
                                                   "3 Dunmore School invoices.pdf: 4 5 6 7",
                                                   "4 Elm Street Clinic invoices.pdf: 9 10 11"};
    }
    void shippedExample()
    {
        QFETCH(QString, rule);
        QFETCH(int, method);
        QVERIFY(QFile::rename(settingsFileName(), "own.ini"));
        QVERIFY(QFile::copy(SENDRIVO_EXAMPLES "/setting.ini", settingsFileName()));
        const auto backAgain = qScopeGuard([] {
            QFile::remove(settingsFileName());
            QFile::rename("own.ini", settingsFileName());
        });
        const QString input = QStringLiteral(SENDRIVO_EXAMPLES "/invoices.pdf");
        WindowDriver driver;
        QVERIFY(driver.add({input}));
        choose(driver, rule, method);
        QVERIFY(driver.split());
        QTEST(documentsOf(input), "expected");
    }

    /// Files of the same name from different folders share an output folder.
    void sameNameFromTwoFolders()
    {
        QVERIFY(QDir::current().mkpath("left") && QDir::current().mkpath("right"));
        const QString left = path("left/in.pdf");
        const QString right = path("right/in.pdf");
        QVERIFY(writeSamplePdf(left, {{"A", "Left", 1}, {"B", "Left", 1}}));
        QVERIFY(writeSamplePdf(right, {{"A", "Right", 1}}));
        WindowDriver driver;
        QVERIFY(driver.add({left, right}));
        choose(driver, "number", 0);
        QVERIFY(driver.split());
        const QDir folder(output->filePath("in"));
        QCOMPARE(folder.entryList(QDir::Files),
                 QStringList({"1 A in 1 (2).pdf", "1 A in 1.pdf", "2 B in 2.pdf"}));
        QVERIFY(pdfreader::pageTexts(folder.filePath("1 A in 1.pdf")).value(0).contains("Left"));
        QVERIFY(
            pdfreader::pageTexts(folder.filePath("1 A in 1 (2).pdf")).value(0).contains("Right"));
    }

    /// Without its page layouts a file has no texts: least of all those of an earlier file.
    void converterMissing()
    {
        WindowDriver driver;
        QVERIFY(driver.add({path("one.pdf"), path("two.pdf")}));
        choose(driver, "number", 0);
        QVERIFY(driver.split());
        QVERIFY(QFile::rename(inAppFolder("quillrend"), inAppFolder("quillrend.away")));
        const auto backAgain = qScopeGuard(
            [] { QFile::rename(inAppFolder("quillrend.away"), inAppFolder("quillrend")); });
        output = std::make_unique<QTemporaryDir>();
        choose(driver, "number", 0);
        QVERIFY(driver.split());
        QCOMPARE(documentsOf(path("two.pdf")), QStringList({"1   two 1-3.pdf: 1 2 3"}));
    }
};

SENDRIVO_TEST_MAIN(TestSplitJob, QApplication)
#include "tst_splitjob.moc"
