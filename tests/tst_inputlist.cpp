// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/settingsfile.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"
#include "tests/support/windowdriver.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QSettings>
#include <QTest>

namespace {

/// Files of one page, 12 pages and 3 pages; both "9 < 12" and sizes are unlike their text order.
const QMap<QString, int> pagesOfFile = {{"b one.pdf", 1}, {"a.pdf", 12}, {"c.pdf", 9}};

QString path(const QString &name)
{
    return QDir::current().filePath(name);
}

QStringList paths(const QStringList &names)
{
    QStringList all;
    for (const QString &name : names)
        all.append(name.contains(QLatin1String("://")) ? name : path(name));
    return all;
}

} // namespace

/// The list of input files: adding, removing, moving, sorting.
class TestInputList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (auto file = pagesOfFile.cbegin(); file != pagesOfFile.cend(); ++file)
            QVERIFY(writeSamplePdf(path(file.key()), {{"N", "C", file.value()}}));
        QVERIFY(QDir::current().mkpath("folder.pdf"));
        for (const char *name : {"text.txt", "empty.pdf"})
            QVERIFY(QFile(path(name)).open(QIODevice::WriteOnly));
        QVERIFY(QFile::copy(path("a.pdf"), path("UPPER.PDF")));
    }

    void cleanup() { QFile::remove(settingsFileName()); }

    void everyCellInItsRow_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::newRow("ascending") << QStringList{"a.pdf", "b one.pdf", "c.pdf"};
        QTest::newRow("descending") << QStringList{"c.pdf", "b one.pdf", "a.pdf"};
        QTest::newRow("same file twice") << QStringList{"b one.pdf", "b one.pdf", "a.pdf"};
    }
    void everyCellInItsRow()
    {
        QFETCH(QStringList, names);
        WindowDriver driver;
        QVERIFY(driver.add(paths(names)));
        QStringList progress;
        for (int row = 0; row < names.size(); ++row) {
            const QString file = path(names[row]);
            QCOMPARE(driver.cell(row, 0), file);
            QCOMPARE(driver.cell(row, 1), QString::number(pagesOfFile.value(names[row])));
            QCOMPARE(driver.cell(row, 2),
                     QString::asprintf("%14.3f KB", QFileInfo(file).size() / 1000.0));
            QCOMPARE(driver.cell(row, 3), QStringLiteral("-"));
            progress.append("Loading " + file);
        }
        QCOMPARE(driver.table()->rowCount(), names.size());
        QCOMPARE(driver.progress(), progress << "Finished.");
    }

    void drops_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("dropped");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QStringList>("counted"); // files whose page count is asked for

        const auto row = [](const char *name, const QStringList &before, const QStringList &dropped,
                            const QStringList &rows, const QStringList &counted) {
            QTest::newRow(name) << before << dropped << rows << counted;
        };
        row("appended", {"a.pdf"}, {"c.pdf", "UPPER.PDF"}, {"a.pdf", "c.pdf", "UPPER.PDF"},
            {"c.pdf", "UPPER.PDF"});
        row("no PDF before a PDF: past the end", {"a.pdf", "c.pdf"}, {"text.txt", "b one.pdf"},
            {"a.pdf", "c.pdf"}, {"b one.pdf"});
        row("no PDF after a PDF", {}, {"a.pdf", "text.txt"}, {"a.pdf"}, {"a.pdf"});
        row("no PDF between PDFs", {}, {"a.pdf", "text.txt", "c.pdf"}, {"a.pdf"},
            {"a.pdf", "c.pdf"});
        row("only a text file", {}, {"text.txt"}, {}, {});
        row("folder ends the drop", {}, {"folder.pdf", "a.pdf"}, {}, {});
        row("address ends the list", {}, {"a.pdf", "https://x.example/y.pdf", "c.pdf"}, {"a.pdf"},
            {"a.pdf"});
    }
    void drops()
    {
        QFETCH(QStringList, before);
        QFETCH(QStringList, dropped);
        QFETCH(QStringList, rows);
        QFETCH(QStringList, counted);
        WindowDriver driver;
        if (!before.isEmpty())
            QVERIFY(driver.add(paths(before)));
        QVERIFY(driver.add(paths(dropped)));
        QCOMPARE(driver.column(0), paths(rows));
        QCOMPARE(driver.column(1).count("-"), 0);
        QStringList loaded;
        for (const QString &line : driver.progress())
            if (line.startsWith("Loading "))
                loaded.append(line.mid(8));
        QCOMPARE(loaded, paths(before + counted));
    }

    void folderAfterFilesLeavesThemUncounted()
    {
        WindowDriver driver;
        driver.drop(paths({"a.pdf", "folder.pdf", "c.pdf"}));
        QCOMPARE(driver.column(0), paths({"a.pdf"}));
        QCOMPARE(driver.column(1), QStringList{"-"});
        QVERIFY(driver.button("openfileButton")->isEnabled());
        QCOMPARE(driver.progress(), QStringList{""});
    }

    void emptyFileHasNoSize()
    {
        WindowDriver driver;
        QVERIFY(driver.add(paths({"empty.pdf"})));
        QCOMPARE(driver.cell(0, 1), QString());
        QCOMPARE(driver.cell(0, 2), QStringLiteral("-"));
    }

    void busyWhilePagesAreCounted()
    {
        WindowDriver driver;
        const QList<const char *> busyButtons = {
            "openfileButton",  "removeButton",      "removeallButton", "pushButton_up",
            "pushButton_down", "pushButton_option", "runButton"};
        QVERIFY(driver.takesDrag(paths({"a.pdf"})));
        driver.drop(paths({"a.pdf", "c.pdf"}));
        for (const char *name : busyButtons)
            QVERIFY2(!driver.button(name)->isEnabled(), name);
        for (const char *name : {"aboutButton", "outputButton"})
            QVERIFY2(driver.button(name)->isEnabled(), name);
        QCOMPARE(driver.table()->contextMenuPolicy(), Qt::NoContextMenu);
        QVERIFY(!driver.takesDrag(paths({"a.pdf"})));
        driver.clickHeader(0);
        driver.clickHeader(0);
        QCOMPARE(driver.column(0), paths({"a.pdf", "c.pdf"}));

        QVERIFY(driver.waitForPageCounts());
        for (const char *name : busyButtons)
            QVERIFY2(driver.button(name)->isEnabled(), name);
        QCOMPARE(driver.table()->contextMenuPolicy(), Qt::ActionsContextMenu);
        QCOMPARE(driver.column(1), QStringList({"12", "9"}));
    }

    void sorting()
    {
        WindowDriver driver;
        QVERIFY(driver.add(paths({"c.pdf", "b one.pdf", "a.pdf", "empty.pdf"})));
        driver.clickHeader(1);
        QCOMPARE(driver.column(1), QStringList({"", "1", "9", "12"}));
        driver.clickHeader(1);
        QCOMPARE(driver.column(1), QStringList({"12", "9", "1", ""}));
        driver.clickHeader(2);
        QCOMPARE(driver.column(0), paths({"b one.pdf", "c.pdf", "a.pdf", "empty.pdf"}));
        // The sorted column does not stay active: what is added later stays where it is added.
        QVERIFY(driver.add(paths({"b one.pdf"})));
        QCOMPARE(driver.column(0),
                 paths({"b one.pdf", "c.pdf", "a.pdf", "empty.pdf", "b one.pdf"}));
        QCOMPARE(driver.column(1), QStringList({"1", "9", "12", "", "1"}));
    }

    void removing()
    {
        WindowDriver driver;
        QVERIFY(driver.add(paths({"a.pdf", "b one.pdf", "c.pdf"})));
        QCOMPARE(driver.table()->selectionModel()->selectedRows().size(), 1);
        driver.clickCell(2, 0, Qt::ControlModifier); // besides the first row
        driver.click("removeButton");
        QCOMPARE(driver.column(0), paths({"b one.pdf"}));
        driver.clickCell(0, 1);
        driver.click("removeButton");
        QCOMPARE(driver.table()->rowCount(), 0);
        driver.click("removeButton");
        driver.click("removeallButton");
        QVERIFY(driver.add(paths({"a.pdf", "b one.pdf"})));
        driver.click("removeallButton");
        QCOMPARE(driver.table()->rowCount(), 0);
    }

    void moving_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<int>("selected");

        QTest::newRow("up") << "pushButton_up" << 2 << QStringList{"a", "c", "b"} << 1;
        QTest::newRow("down") << "pushButton_down" << 0 << QStringList{"b", "a", "c"} << 1;
        QTest::newRow("first up") << "pushButton_up" << 0 << QStringList{"a", "b", "c"} << 0;
        QTest::newRow("last down") << "pushButton_down" << 2 << QStringList{"a", "b", "c"} << 2;
    }
    void moving()
    {
        QFETCH(QString, button);
        QFETCH(int, row);
        QFETCH(QStringList, names);
        QFETCH(int, selected);
        const QMap<QString, QString> files = {{"a", "a.pdf"}, {"b", "b one.pdf"}, {"c", "c.pdf"}};
        WindowDriver driver;
        QVERIFY(driver.add(paths({"a.pdf", "b one.pdf", "c.pdf"})));
        driver.clickCell(row, 0);
        driver.click(qPrintable(button));
        QStringList expected;
        QStringList pages;
        for (const QString &name : names) {
            expected.append(path(files[name]));
            pages.append(QString::number(pagesOfFile[files[name]]));
        }
        QCOMPARE(driver.column(0), expected);
        QCOMPARE(driver.column(1), pages);
        const QModelIndexList rows = driver.table()->selectionModel()->selectedRows();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first().row(), selected);
    }

    /// Two selected rows fill six cells, so two steps of four cells each: the second step starts
    /// at the fifth cell, in the second row.
    void movingTwoRows()
    {
        WindowDriver driver;
        QVERIFY(driver.add(paths({"a.pdf", "b one.pdf", "c.pdf"})));
        driver.clickCell(1, 0);
        driver.clickCell(2, 0, Qt::ControlModifier);
        driver.click("pushButton_up");
        QCOMPARE(driver.column(0), paths({"b one.pdf", "c.pdf", "a.pdf"}));
    }

    void addDialog()
    {
        WindowDriver driver;
        whenDialogOpens([](QDialog *dialog) {
            auto *files = qobject_cast<QFileDialog *>(dialog);
            QCOMPARE(files->windowTitle(), QStringLiteral("Add File"));
            QCOMPARE(files->nameFilters(), QStringList({"PDF File(*.pdf)", "ALL files(*.*)"}));
            files->findChild<QLineEdit *>("fileNameEdit")->setText("\"a.pdf\" \"c.pdf\"");
            QMetaObject::invokeMethod(files, "accept");
        });
        driver.click("openfileButton");
        QVERIFY(driver.waitForPageCounts());
        QCOMPARE(driver.column(0), paths({"a.pdf", "c.pdf"}));
        const QSettings settings(settingsFileName(), QSettings::IniFormat);
        QCOMPARE(settings.value("dir/input").toString(), QDir::currentPath());

        whenDialogOpens([](QDialog *dialog) { dialog->reject(); });
        driver.click("openfileButton");
        QCOMPARE(driver.table()->rowCount(), 2);
        QVERIFY(driver.button("openfileButton")->isEnabled());
    }

    void outputFolderDialog()
    {
        WindowDriver driver;
        const QString folder = path("folder.pdf");
        const QSettings settings(settingsFileName(), QSettings::IniFormat);
        whenDialogOpens([folder](QDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), QStringLiteral("Save"));
            dialog->findChild<QLineEdit *>("fileNameEdit")->setText(folder);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        driver.click("outputButton");
        const auto *field = driver.widget<QLineEdit>("outputfolderEdit");
        QCOMPARE(field->text(), folder);
        QCOMPARE(settings.value("dir/output").toString(), folder);

        whenDialogOpens([](QDialog *dialog) { dialog->reject(); });
        driver.click("outputButton");
        QCOMPARE(field->text(), QString());
        QCOMPARE(settings.value("dir/output").toString(), QString());
    }
};

SENDRIVO_TEST_MAIN(TestInputList, QApplication)
#include "tst_inputlist.moc"
