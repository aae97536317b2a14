// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/settingsfile.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"
#include "tests/support/windowdriver.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

namespace {

// The rules of the shipped example, which suit every sample.
const QString number = QStringLiteral("Invoice number");
const QString customer = QStringLiteral("Recipient");

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

    void choose(const WindowDriver &driver, const QString &rule = number, int method = 0) const
    {
        driver.choose(rule, method, output->path());
    }

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::copy(SENDRIVO_EXAMPLES "/setting.ini", settingsFileName()));
        for (const char *name : {"one.pdf", "two.pdf"})
            QVERIFY(writeSamplePdf(workPath(name), {{"X", "C", 2}, {"Y", "C", 1}}));
    }

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
                            const QString &rule, int method, const QStringList &expected,
                            const QString &base = "in") {
            QTest::newRow(name) << invoices << rule << method << base << expected;
        };
        row("by change of number", batch, number, 0,
            {"1 INV-1 in 1-2.pdf: 1 2", "2 INV-2 in 3-5.pdf: 3 4 5", "3 INV-3 in 6.pdf: 6"});
        row("by presence of number", {{"A", "C", 3, true}, {"A", "C", 1}, {"B", "C", 7, true}},
            number, 1,
            {"1 A in 1-3.pdf: 1 2 3", "2 A in 4.pdf: 4", "3 B in 5-11.pdf: 5 6 7 8 9 10 11"});
        row("grouped by customer", batch, customer, 2,
            {"1 Ash in.pdf: 1 2 6", "2 Birch in.pdf: 3 4 5"});
        row("no such rule", batch, "", 0, {"1   in 1-6.pdf: 1 2 3 4 5 6"});
        row("slash and quotes", {{"1", "1/7 \"Hi\"", 1}, {"2", "1/8 \"\"\"", 1}}, customer, 0,
            {"1 1-7 \"Hi\" in 1.pdf: 1", "2 1-8 \"\"\" in 2.pdf: 2"});
        row("like options and folders", {{"1", "-outfile", 1}, {"2", "..", 1}, {"3", "../../x", 1}},
            customer, 0,
            {"1 -outfile -merge 1.pdf: 1", "2 .. -merge 2.pdf: 2", "3 ..-..-x -merge 3.pdf: 3"},
            "-merge");
        row("not Latin",
            {{"1", QString::fromUtf8("Счёт №7"), 1}, {"2", QString::fromUtf8("請求書"), 1}},
            customer, 0,
            {QString::fromUtf8("1 Счёт №7 in 1.pdf: 1"),
             QString::fromUtf8("2 請求書 in 2.pdf: 2")});
        const QString longBase(190, 'b');
        row("longer than a file name", {{"1", QString(25, QChar(0x66f8)), 1}}, customer, 0,
            {"1 " + QString(18, QChar(0x66f8)) + ' ' + longBase + " 1.pdf: 1"}, longBase);
        row("blanks and quotes in the path", batch, customer, 2,
            {"1 Ash my  \"in\".pdf: 1 2 6", "2 Birch my  \"in\".pdf: 3 4 5"}, "my  \"in\"");
    }
    void oneFile()
    {
        QFETCH(QList<SampleInvoice>, invoices);
        QFETCH(QString, rule);
        QFETCH(int, method);
        QFETCH(QString, base);
        const QString input = workPath(base + ".pdf");
        QVERIFY(writeSamplePdf(input, invoices));
        WindowDriver driver;
        driver.widget<QComboBox>("comboBox_rule")->addItem(QString());
        QVERIFY(driver.add({input}));
        choose(driver, rule, method);
        QVERIFY(driver.split());
        QTEST(documentsOf(input), "expected");
        QCOMPARE(driver.cell(0, 3), QStringLiteral("Succeed"));
    }

    /// What a newcomer sees first.
    void shippedExample()
    {
        const QString input = QStringLiteral(SENDRIVO_EXAMPLES "/invoices.pdf");
        WindowDriver driver;
        QVERIFY(driver.add({input}));
        choose(driver, customer, 2);
        QVERIFY(driver.split());
        QCOMPARE(documentsOf(input), QStringList({"1 Alder & Wren Ltd invoices.pdf: 1 2 8",
                                                  "2 Cobalt Theatre invoices.pdf: 3 12",
                                                  "3 Dunmore School invoices.pdf: 4 5 6 7",
                                                  "4 Elm Street Clinic invoices.pdf: 9 10 11"}));
    }

    void progressOfABatch()
    {
        WindowDriver driver;
        QVERIFY(driver.add(workPaths({"one.pdf", "two.pdf"})));
        choose(driver);
        QStringList expected = driver.progress();
        for (int round = 0; round < 2; ++round) { // a second batch starts anew
            QVERIFY(driver.split());
            expected << "Conversion Start:";
            for (const QString &name : {QString("one"), QString("two")}) {
                const QString folder = output->filePath(name);
                expected << workPath(name + ".pdf") << "Analyzing page 1"
                         << "Analyzing page 2"
                         << "Analyzing page 3"
                         << "Generating " + folder + "/1 X " + name + " 1-2.pdf"
                         << "Generating " + folder + "/2 Y " + name + " 3.pdf";
            }
            expected << "Conversion Finished.";
            QCOMPARE(driver.progress(), expected);
        }
    }

    /// A file that cannot be read costs only itself.
    void badFilesAmongGoodOnes()
    {
        const QString good = workPath("one.pdf");
        encryptSamplePdf(good, workPath("secret.pdf"), {"password"});
        encryptSamplePdf(good, workPath("open.pdf"), {});
        QFile damaged("damaged.pdf");
        QVERIFY(damaged.open(QIODevice::WriteOnly));
        damaged.write("%PDF-1.4\n1 0 obj <</Type /Catalog");
        damaged.close();
        WindowDriver driver;
        QVERIFY(driver.add(workPaths(
            {"one.pdf", "secret.pdf", "damaged.pdf", "missing.pdf", "open.pdf", "two.pdf"})));
        QCOMPARE(driver.column(1), QStringList({"3", "", "", "", "3", "3"}));
        choose(driver);
        QVERIFY(driver.split());
        QCOMPARE(driver.column(3),
                 QStringList({"Succeed", "Failed", "Failed", "Failed", "Succeed", "Succeed"}));
        for (const char *name : {"one", "open", "two"})
            QCOMPARE(documents(output->filePath(name), good),
                     QStringList({QString("1 X %1 1-2.pdf: 1 2").arg(name),
                                  QString("2 Y %1 3.pdf: 3").arg(name)}));
        for (const char *name : {"secret", "damaged", "missing"})
            QCOMPARE(documents(output->filePath(name), good), QStringList());
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
        QTest::newRow("a file as folder") << true << workPath("one.pdf") << noFolder;
    }
    void refusedStarts()
    {
        QFETCH(bool, hasFile);
        QFETCH(QString, folder);
        WindowDriver driver;
        if (hasFile)
            QVERIFY(driver.add({workPath("one.pdf")}));
        driver.setOutputFolder(folder);
        const QStringList before = driver.progress();
        QString shown;
        acceptMessageBox(&shown);
        driver.click("runButton");
        QTEST(shown, "message");
        QCOMPARE(driver.progress(), before);
        const QString field = driver.widget<QLineEdit>("outputfolderEdit")->text();
        QCOMPARE(field, hasFile ? QString() : folder);
        QVERIFY(driver.isEnabled("removeButton"));
    }

    /// Rows are addressed by number while a batch runs.
    void guardedWhileRunning()
    {
        const QStringList inputs = workPaths({"one.pdf", "two.pdf"});
        const auto controls = {"removeButton",     "removeallButton", "pushButton_up",
                               "pushButton_down",  "comboBox_rule",   "comboBox_method",
                               "outputfolderEdit", "outputButton",    "pushButton_option"};
        WindowDriver driver;
        QVERIFY(driver.add(inputs));
        choose(driver);
        driver.click("runButton");
        driver.click("runButton");
        for (const char *name : controls)
            QVERIFY2(!driver.isEnabled(name), name);
        driver.clickHeader(0);
        driver.clickHeader(0);
        driver.window.setremove();
        driver.window.setremoveall();
        driver.window.setrowdown();
        QCOMPARE(driver.column(0), inputs);
        QVERIFY(driver.add({workPath("in.pdf")})); // adding files goes on
        QTRY_VERIFY(driver.progress().contains("Conversion Finished."));
        QCOMPARE(driver.progress().filter("Conversion Start:").size(), 1);
        for (const char *name : controls)
            QVERIFY2(driver.isEnabled(name), name);
        QCOMPARE(driver.column(3).mid(0, 2), QStringList({"Succeed", "Succeed"}));
    }

    /// A document takes the place neither of an input nor of another input's document.
    void namesInUse()
    {
        const QString one = workPath("one.pdf");
        QVERIFY(QDir().mkpath("a") && QDir().mkpath("b") && QDir(output->path()).mkpath("one"));
        const QStringList inputs = {one, output->filePath("one/1 X one 1-2.pdf"),
                                    workPath("a/.pdf"), workPath("b/.pdf")};
        for (const QString &input : inputs)
            QVERIFY(input == one || QFile::copy(one, input));
        QVERIFY(QFile::link(output->filePath("one"), workPath("linked")));
        WindowDriver driver;
        QVERIFY(driver.add({one, workPath("linked/1 X one 1-2.pdf"), inputs[2], inputs[3]}));
        choose(driver);
        QVERIFY(driver.split());
        QCOMPARE(driver.column(3), QStringList(4, "Succeed"));
        QCOMPARE(documents(output->filePath("one"), one),
                 QStringList({"1 X one 1-2.pdf: 1 2 3", "2 Y one 3.pdf: 3"}));
        QVERIFY(QFile::exists(output->filePath("one/1 X one 1-2 (2).pdf")));
        QCOMPARE(QDir(output->path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList({"1 X  1-2 (2).pdf", "1 X  1-2.pdf", "2 Y  3 (2).pdf", "2 Y  3.pdf"}));
    }

    void outputFolderLostBetweenFiles()
    {
        const QStringList inputs = workPaths({"one.pdf", "two.pdf", "in.pdf"});
        WindowDriver driver;
        QVERIFY(driver.add(inputs));
        choose(driver);
        driver.click("runButton");
        QString shown;
        acceptMessageBox(&shown);
        driver.setOutputFolder(QString()); // the first file is under way
        QTRY_VERIFY(!shown.isEmpty());
        QTRY_VERIFY(driver.isEnabled("removeButton"));
        QVERIFY(!driver.progress().contains(inputs[1]));

        choose(driver);
        QVERIFY(driver.split()); // goes on with the second file
        QCOMPARE(driver.progress().filter("Conversion Start:").size(), 1);
        QCOMPARE(driver.column(3).mid(1), QStringList({"Succeed", "Succeed"}));
    }
};

SENDRIVO_TEST_MAIN(TestSplitJob, QApplication)
#include "tst_splitjob.moc"
