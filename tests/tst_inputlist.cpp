// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "resources/screenplace.h"
#include "rules/settingsfile.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"
#include "tests/support/windowdriver.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

namespace {

/// Pages of the files; both "9 < 12" and sizes are unlike their text order. The last is no PDF.
const QMap<QString, QString> pagesOfFile = {
    {"a.pdf", "12"}, {"b one.pdf", "1"}, {"c.pdf", "9"}, {"empty.pdf", ""}};

} // namespace

/// The list of input files: adding, removing, moving, sorting.
class TestInputList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (const QString &name : {QString("a.pdf"), QString("b one.pdf"), QString("c.pdf")})
            QVERIFY(writeSamplePdf(workPath(name), {{"N", "C", pagesOfFile[name].toInt()}}));
        QVERIFY(QDir::current().mkpath("folder.pdf"));
        for (const char *name : {"text.txt", "empty.pdf"})
            QVERIFY(QFile(workPath(name)).open(QIODevice::WriteOnly));
        QVERIFY(QFile::copy("a.pdf", "UPPER.PDF"));
    }

    void cleanup() { QFile::remove(settingsFileName()); }

    void everyCellInItsRow_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::newRow("ascending") << QStringList{"a.pdf", "b one.pdf", "c.pdf"};
        QTest::newRow("descending, one empty")
            << QStringList{"empty.pdf", "c.pdf", "b one.pdf", "a.pdf"};
        QTest::newRow("same file twice") << QStringList{"b one.pdf", "b one.pdf", "a.pdf"};
    }
    void everyCellInItsRow()
    {
        QFETCH(QStringList, names);
        WindowDriver driver;
        QVERIFY(driver.add(workPaths(names)));
        QStringList progress;
        for (int row = 0; row < names.size(); ++row) {
            const qint64 bytes = QFileInfo(names[row]).size();
            QCOMPARE(driver.cell(row, 1), pagesOfFile[names[row]]);
            QCOMPARE(driver.cell(row, 2),
                     bytes > 0 ? QString::asprintf("%14.3f KB", bytes / 1000.0) : QString("-"));
            QCOMPARE(driver.cell(row, 3), QStringLiteral("-"));
            progress.append("Loading " + workPath(names[row]));
        }
        QCOMPARE(driver.column(0), workPaths(names));
        QCOMPARE(driver.progress(), progress << "Finished.");
    }

    void drops_data()
    {
        for (const char *column : {"before", "dropped", "rows", "counted"}) // pages asked for
            QTest::addColumn<QStringList>(column);
        const auto row = [](const char *name, const QStringList &before, const QStringList &dropped,
                            const QStringList &rows, const QStringList &counted) {
            QTest::newRow(name) << before << dropped << rows << counted;
        };
        row("appended", {"a.pdf"}, {"c.pdf", "UPPER.PDF"}, {"a.pdf", "c.pdf", "UPPER.PDF"},
            {"c.pdf", "UPPER.PDF"});
        row("no PDF before a PDF: past the end", {"a.pdf", "c.pdf"}, {"text.txt", "b one.pdf"},
            {"a.pdf", "c.pdf"}, {"b one.pdf"});
        row("no PDF between PDFs", {}, {"a.pdf", "text.txt", "c.pdf"}, {"a.pdf"},
            {"a.pdf", "c.pdf"});
        row("only a text file", {}, {"text.txt"}, {}, {});
        row("address ends the list", {}, {"a.pdf", "https://x.example/y.pdf", "c.pdf"}, {"a.pdf"},
            {"a.pdf"});
        row("folder ends the drop", {"c.pdf"}, {"a.pdf", "folder.pdf", "c.pdf"}, {"c.pdf", "a.pdf"},
            {});
    }
    void drops()
    {
        QFETCH(QStringList, before);
        QFETCH(QStringList, dropped);
        QFETCH(QStringList, rows);
        QFETCH(QStringList, counted);
        WindowDriver driver;
        if (!before.isEmpty())
            QVERIFY(driver.add(workPaths(before)));
        QVERIFY(driver.add(workPaths(dropped)));
        QCOMPARE(driver.column(0), workPaths(rows));
        const bool isFolderAmongThem = dropped.contains("folder.pdf");
        QCOMPARE(driver.column(1).count("-"), isFolderAmongThem ? 1 : 0);
        QStringList loaded = driver.progress().filter("Loading ");
        QCOMPARE(loaded.replaceInStrings("Loading ", ""), workPaths(before + counted));
    }

    void busyWhilePagesAreCounted()
    {
        WindowDriver driver;
        const auto usable = [&driver] {
            QByteArray flags;
            for (const char *name : {"openfileButton", "removeButton", "removeallButton",
                                     "pushButton_up", "pushButton_down", "pushButton_option",
                                     "runButton", "aboutButton", "outputButton"})
                flags += driver.isEnabled(name) ? '1' : '0';
            return flags;
        };
        QVERIFY(driver.takesDrag());
        driver.drop(workPaths({"a.pdf", "c.pdf"}));
        QCOMPARE(usable(), "000000011");
        QCOMPARE(driver.table()->contextMenuPolicy(), Qt::NoContextMenu);
        QVERIFY(!driver.takesDrag());
        driver.clickHeader(0);
        driver.clickHeader(0);
        QCOMPARE(driver.column(0), workPaths({"a.pdf", "c.pdf"}));

        QVERIFY(driver.waitForPageCounts());
        QCOMPARE(usable(), "111111111");
        QCOMPARE(driver.table()->contextMenuPolicy(), Qt::ActionsContextMenu);
        QCOMPARE(driver.column(1), QStringList({"12", "9"}));
    }

    void focusComesBackAfterCounting()
    {
        WindowDriver driver;
        QVERIFY(driver.add({workPath("c.pdf")})); // in an empty table Tab moves on by itself
        driver.table()->setFocus();
        QTest::keyClick(driver.table(), Qt::Key_Tab);
        for (const bool isMoved : {false, true}) {
            QCOMPARE(driver.window.focusWidget()->objectName(), QStringLiteral("openfileButton"));
            driver.drop({workPath("a.pdf")});
            QVERIFY(driver.window.focusWidget()->isEnabled());
            if (isMoved)
                driver.widget<QWidget>("comboBox_method")->setFocus();
            QVERIFY(driver.waitForPageCounts());
        }
        QCOMPARE(driver.window.focusWidget()->objectName(), QStringLiteral("comboBox_method"));
    }

    void focusIsVisible()
    {
        WindowDriver driver;
        QVERIFY(QTest::qWaitForWindowActive(&driver.window));
        for (const char *name : {"inputfiletableWidget", "outputButton", "textEdit_process"}) {
            auto *control = driver.widget<QWidget>(name);
            QVERIFY2(!control->accessibleName().isEmpty(), name);
            const auto lookAfter = [&](Qt::FocusReason reason) {
                driver.widget<QWidget>("comboBox_rule")->setFocus();
                control->setFocus(reason);
                return driver.window.grab(control->geometry()).toImage();
            };
            QVERIFY2(lookAfter(Qt::TabFocusReason) != lookAfter(Qt::MouseFocusReason), name);
        }
    }

    void textsFit()
    {
        for (const int pointSize : {9, 12}) {
            const DesktopFont font(pointSize);
            WindowDriver driver;
            for (const char *name : {"label_2", "label_4", "outputfolderlabel"}) {
                const auto *label = driver.widget<QLabel>(name);
                QVERIFY2(label->sizeHint().width() <= label->width(), name);
            }
            QVERIFY(pointSize > 9 || driver.widget<QLabel>("label_2")->width() == 90);
            for (const auto *button :
                 driver.widget<QFrame>("frame")->findChildren<QPushButton *>()) {
                const QRect text = button->fontMetrics().boundingRect(button->text());
                QVERIFY(button->iconSize().width() + 4 + text.width() < button->width());
                QVERIFY(pointSize > 9 || button->width() == 90);
            }
        }
    }

    /// Centred; not under a panel; smaller on a screen too low, or too small, for it.
    void placesOnScreens()
    {
        const QList<QList<QRect>> screens = {
            {{0, 0, 1920, 1080}, {0, 30, 1920, 1050}, {625, 227, 669, 626}},
            {{1920, 0, 1366, 768}, {1920, 0, 1366, 738}, {2268, 71, 669, 626}},
            {{0, 0, 1024, 768}, {0, 100, 1024, 668}, {177, 100, 669, 626}},
            {{0, 0, 1024, 600}, {0, 0, 1024, 570}, {177, 0, 669, 533}},
            {{0, 0, 360, 640}, {0, 20, 360, 620}, {0, 20, 360, 583}}};
        for (const QList<QRect> &screen : screens)
            QCOMPARE(placeOnScreen({669, 626}, screen[0], screen[1]), screen[2]);
    }

    void sorting()
    {
        WindowDriver driver;
        QVERIFY(driver.add(workPaths({"c.pdf", "b one.pdf", "a.pdf", "empty.pdf"})));
        driver.clickHeader(1);
        QCOMPARE(driver.column(1), QStringList({"", "1", "9", "12"}));
        driver.clickHeader(1);
        QCOMPARE(driver.column(1), QStringList({"12", "9", "1", ""}));
        driver.clickHeader(2);
        QCOMPARE(driver.column(1), QStringList({"1", "9", "12", ""}));
        // The sorted column does not stay active: what is added later stays where it is added.
        QVERIFY(driver.add({workPath("b one.pdf")}));
        QCOMPARE(driver.column(0),
                 workPaths({"b one.pdf", "c.pdf", "a.pdf", "empty.pdf", "b one.pdf"}));
        QCOMPARE(driver.column(1), QStringList({"1", "9", "12", "", "1"}));
    }

    void removing()
    {
        WindowDriver driver;
        QVERIFY(driver.add(workPaths({"a.pdf", "b one.pdf", "c.pdf"})));
        QCOMPARE(driver.table()->selectionModel()->selectedRows().size(), 1);
        driver.clickCell(2, 0, Qt::ControlModifier); // besides the first row
        driver.click("removeButton");
        QCOMPARE(driver.column(0), workPaths({"b one.pdf"}));
        driver.clickCell(0, 1);
        for (const char *button : {"removeButton", "removeButton", "removeallButton"}) {
            driver.click(button);
            QCOMPARE(driver.table()->rowCount(), 0);
        }
        QVERIFY(driver.add(workPaths({"a.pdf", "b one.pdf"})));
        driver.click("removeallButton");
        QCOMPARE(driver.table()->rowCount(), 0);
    }

    void moving_data()
    {
        QTest::addColumn<QString>("direction");
        QTest::addColumn<QList<int>>("rows");
        QTest::addColumn<QStringList>("pages"); // of the files in their new order
        QTest::addColumn<int>("selected");
        const auto row = [](const char *name, const char *direction, const QList<int> &rows,
                            const QStringList &pages, int selected) {
            QTest::newRow(name) << direction << rows << pages << selected;
        };
        row("up", "up", {2}, {"12", "9", "1", "1", "9"}, 1);
        row("down", "down", {0}, {"1", "12", "9", "1", "9"}, 1);
        row("first up", "up", {0}, {"12", "1", "9", "1", "9"}, 0);
        row("last down", "down", {4}, {"12", "1", "9", "1", "9"}, 4);
        // Twelve filled cells are three steps of four cells each: the fourth row stays.
        row("four rows up", "up", {1, 2, 3, 4}, {"1", "9", "1", "12", "9"}, 2);
    }
    void moving()
    {
        QFETCH(QString, direction);
        QFETCH(QList<int>, rows);
        QFETCH(QStringList, pages);
        WindowDriver driver;
        QVERIFY(driver.add(workPaths({"a.pdf", "b one.pdf", "c.pdf", "b one.pdf", "c.pdf"})));
        driver.clickCell(rows.first(), 0);
        for (const int row : rows.mid(1))
            driver.clickCell(row, 0, Qt::ControlModifier);
        driver.click(qPrintable("pushButton_" + direction));
        QCOMPARE(driver.column(1), pages);
        for (int row = 0; row < pages.size(); ++row)
            QCOMPARE(driver.cell(row, 0), workPath(pagesOfFile.key(pages[row])));
        const QModelIndexList selection = driver.table()->selectionModel()->selectedRows();
        QCOMPARE(selection.size(), 1);
        QTEST(selection.first().row(), "selected");
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
        QCOMPARE(driver.column(0), workPaths({"a.pdf", "c.pdf"}));
        QCOMPARE(storedSettings().value("dir/input").toString(), QDir::currentPath());

        whenDialogOpens([](QDialog *dialog) { dialog->reject(); });
        driver.click("openfileButton");
        QCOMPARE(driver.table()->rowCount(), 2);
        QVERIFY(driver.isEnabled("openfileButton"));
    }

    void outputFolderDialog()
    {
        WindowDriver driver;
        for (const QString &folder : {workPath("folder.pdf"), QString()}) { // none: cancelled
            whenDialogOpens([folder](QDialog *dialog) {
                QCOMPARE(dialog->windowTitle(), QStringLiteral("Save"));
                dialog->findChild<QLineEdit *>("fileNameEdit")->setText(folder);
                QMetaObject::invokeMethod(dialog, folder.isEmpty() ? "reject" : "accept");
            });
            driver.click("outputButton");
            QCOMPARE(driver.widget<QLineEdit>("outputfolderEdit")->text(), folder);
            QCOMPARE(storedSettings().value("dir/output").toString(), folder);
        }
    }
};

SENDRIVO_TEST_MAIN(TestInputList, QApplication)
#include "tst_inputlist.moc"
