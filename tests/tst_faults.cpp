// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/settingsfile.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"
#include "tests/support/windowdriver.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

namespace {

const QString exampleSettings = QStringLiteral(SENDRIVO_EXAMPLES "/setting.ini");

QString toolPath(const QString &name)
{
    return QCoreApplication::applicationDirPath() + '/' + name;
}

/// Puts a shell script in the place of a tool as long as it lives; "real" in the script runs the
/// tool itself with the script's arguments. An empty script leaves the tool, "-" takes it away.
class StandIn
{
public:
    StandIn(const QString &tool, const QString &script)
        : path(toolPath(tool)), aside(path + ".real"), isUsed(!script.isEmpty())
    {
        if (!isUsed)
            return;
        QFile::rename(path, aside);
        if (script == "-")
            return;
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        const QString real = QString("#!/bin/sh\nreal() { '%1' \"$@\"; }\n").arg(aside);
        file.write((real + script + '\n').toUtf8());
        file.setPermissions(script == "not executable" ? QFile::ReadOwner
                                                       : QFile::ReadOwner | QFile::ExeOwner);
    }
    ~StandIn()
    {
        if (!isUsed)
            return;
        QFile::remove(path);
        QFile::rename(aside, path);
    }
    Q_DISABLE_COPY_MOVE(StandIn)

private:
    QString path;
    QString aside;
    bool isUsed;
};

/// For scripts: only the first of the two files is treated badly.
QString withFirst(const QString &script)
{
    return "case $* in *one.pdf*) " + script + ";; *) real \"$@\";; esac";
}

} // namespace

/// What the window makes of tools that fail, of files and folders that change while it works, and
/// of its own end.
class TestFaults : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> output;

    void writeInputs()
    {
        for (const char *name : {"one.pdf", "two.pdf"}) {
            QFile::remove(name);
            QVERIFY(writeSamplePdf(workPath(name), {{"X", "C", 2}, {"Y", "C", 1}}));
        }
    }

private slots:
    void initTestCase()
    {
        // Another state of an input: as many pages, other texts.
        QVERIFY(writeSamplePdf(workPath("other.pdf"), {{"P", "C", 1}, {"Q", "C", 2}}));
        QVERIFY(writeSamplePdf(workPath("longer.pdf"), {{"X", "C", 2}, {"Y", "C", 2}}));
    }

    void init()
    {
        output = std::make_unique<QTemporaryDir>(workPath("out-XXXXXX"));
        QFile::remove(settingsFileName());
        QVERIFY(QFile::copy(exampleSettings, settingsFileName()));
        qputenv("OUT", QFile::encodeName(output->path())); // for scripts
        writeInputs();
    }

    void split_data()
    {
        QTest::addColumn<QString>("converter");
        QTest::addColumn<QString>("toolbox"); // for merges
        QTest::addColumn<QString>("verdicts");
        QTest::addColumn<QString>("cause");     // in the first file's tool tip
        QTest::addColumn<QString>("documents"); // of the first file
        const auto row = [](const char *name, const QString &converter, const QString &toolbox,
                            const char *cause, const char *documents = "1   one 1-3.pdf",
                            const char *verdicts = "Failed Succeed") {
            QTest::newRow(name) << converter << toolbox << verdicts << cause << documents;
        };
        const char *whole = "1 X one 1-2.pdf|2 Y one 3.pdf";
        const char *allFail = "Failed Failed";
        row("nothing", "", "", "", whole, "Succeed Succeed");
        row("converter missing", "-", "", "No such file", "1   one 1-3.pdf", allFail);
        row("converter not executable", "not executable", "", "Permission denied",
            "1   one 1-3.pdf", allFail);
        row("converter crashes", withFirst("kill -SEGV $$"), "", "ended from outside");
        row("converter fails", withFirst("echo 'quillrend: because' >&2; exit 3"), "", "because");
        row("converter writes a part", withFirst("real \"$@\"; rm $TMPDIR/split_pg_0003.htm"), "",
            "page 3", "1 X one 1-3.pdf");
        row("working folder removed", withFirst("rm -r $TMPDIR"), "", "page 1");
        row("folder in the way",
            withFirst("rm \"$OUT/one/2 Y one 3.pdf\"; "
                      "mkdir -p \"$OUT/one/2 Y one 3.pdf/x\"; real \"$@\""),
            "", "cannot be replaced", "1 X one 1-2.pdf");
        row("input gone", withFirst("rm one.pdf; real \"$@\""), "", "No such file", "");
        row("input grows", withFirst("cp longer.pdf one.pdf; real \"$@\""), "", "has more pages",
            "");
        row("settings spoilt", withFirst("echo '[%' >setting.ini; real \"$@\""), "", "", whole,
            "Succeed Failed");
        row("toolbox missing", "", "-", "No such file", "", allFail);
        row("toolbox crashes", "", withFirst("kill -KILL $$"), "ended from outside", "");
        row("toolbox fails", "", withFirst("echo 'stavekit: disk full' >&2; exit 5"), "disk full",
            "");
        row("last document fails", "", withFirst("case $* in *'2 Y'*) ;; *) real \"$@\";; esac"),
            "Not written: ", "1 X one 1-2.pdf");
        row("input replaced", "", withFirst("cp other.pdf new; mv new one.pdf; real \"$@\""),
            "changed since", "");
        row("input overwritten", "", withFirst("cat other.pdf >one.pdf; real \"$@\""),
            "changed since", "");
        row("input cut off", "", withFirst("echo >one.pdf; real \"$@\""), "changed since", "");
        row("folder gone", "", withFirst("rm -rf ${5%/*}; real \"$@\""), "No such file", "");
    }
    void split()
    {
        QFETCH(QString, converter);
        QFETCH(QString, toolbox);
        QFETCH(QString, cause);
        // What an earlier batch left must not be taken for this one's.
        const QDir folder(output->filePath("one"));
        QVERIFY(folder.mkpath("."));
        for (const char *name : {"1 X one 1-2.pdf", "2 Y one 3.pdf", "1   one 1-3.pdf"})
            QVERIFY(QFile::copy(exampleSettings, folder.filePath(name)));
        // Nor what a longer file left for the pages.
        const QString layout = QDir::temp().filePath("split_pg_%1.htm");
        for (int page = 4; converter == "-" && page <= 2000; ++page)
            QVERIFY(QFile::copy(exampleSettings, layout.arg(page, 4, 10, QChar('0'))));
        WindowDriver driver;
        QVERIFY(driver.add(workPaths({"one.pdf", "two.pdf"})));
        driver.choose("Invoice number", 0, output->path());
        {
            const StandIn quillrend("quillrend", converter);
            const StandIn stavekit("stavekit", toolbox);
            for (int press = 0; press < 50; ++press)
                driver.click("runButton");
            QTRY_VERIFY(driver.isEnabled("removeButton"));
        }
        QCOMPARE(driver.progress().filter("Conversion Start:").size(), 1);
        QTEST(driver.column(3).join(' '), "verdicts");
        const QString tip = driver.table()->item(0, 3)->toolTip();
        QVERIFY2(cause.isEmpty() == tip.isEmpty() && tip.contains(cause), qPrintable(tip));
        QVERIFY(!tip.contains("X one")); // a document's text is nobody else's business
        QStringList written;
        for (const QFileInfo &file : folder.entryInfoList(QDir::Files | QDir::Hidden)) {
            if (file.size() != QFileInfo(exampleSettings).size())
                written.append(file.fileName());
        }
        QTEST(written.join('|'), "documents");
    }

    /// The file that reports page counts: left by others, in the way, or not written.
    void pageCounts_data()
    {
        QTest::addColumn<QString>("inTheWay"); // a folder instead of this file
        QTest::addColumn<QString>("toolbox");
        QTest::addColumn<QString>("pages");
        QTest::newRow("nothing") << ""
                                 << ""
                                 << "3";
        QTest::newRow("lock held") << "fileinfo.lock"
                                   << ""
                                   << "3";
        QTest::newRow("file in the way") << "fileinfo.txt"
                                         << ""
                                         << "3";
        QTest::newRow("nothing written") << ""
                                         << "exit 0"
                                         << "-";
        QTest::newRow("tool missing") << ""
                                      << "-"
                                      << "-";
        QTest::newRow("not in the first folder")
            << ""
            << "case $4 in *tst_faults*) ;; *) real \"$@\";; esac"
            << "3";
    }
    void pageCounts()
    {
        QFETCH(QString, inTheWay);
        QFETCH(QString, toolbox);
        QFETCH(QString, pages);
        QFile stale(toolPath("fileinfo.txt"));
        if (inTheWay.isEmpty()) {
            QVERIFY(stale.open(QIODevice::WriteOnly) && stale.write("NumberOfPages: 99") > 0);
            stale.close();
        } else {
            QVERIFY(QDir().mkpath(toolPath(inTheWay) + "/x"));
        }
        const auto clear = qScopeGuard([&] {
            stale.remove();
            if (!inTheWay.isEmpty())
                QDir(toolPath(inTheWay)).removeRecursively();
        });
        const StandIn stavekit("stavekit", toolbox);
        WindowDriver driver;
        driver.drop(workPaths({"one.pdf", "two.pdf"}));
        if (pages == "-") {
            // The queue stops, and the pane says why.
            QTRY_VERIFY(driver.progress().last().startsWith("No information file."));
            QVERIFY(!driver.isEnabled("openfileButton"));
        } else {
            QVERIFY(driver.waitForPageCounts());
        }
        QCOMPARE(driver.column(1), QStringList({pages, pages}));
    }

    /// Each window counts for itself.
    void twoWindows()
    {
        const QStringList ones(20, workPath("one.pdf"));
        const QStringList others(20, workPath("longer.pdf"));
        WindowDriver first;
        WindowDriver second;
        first.drop(ones);
        second.drop(others);
        QVERIFY(first.waitForPageCounts());
        QVERIFY(second.waitForPageCounts());
        QCOMPARE(first.column(1), QStringList(20, "3"));
        QCOMPARE(second.column(1), QStringList(20, "4"));
    }

    /// A batch comes to a file before its page count does.
    void addedWhileRunning()
    {
        const StandIn stavekit("stavekit", "case $2 in -getinfo) sleep 0.2;; esac; real \"$@\"");
        const StandIn quillrend("quillrend",
                                "case $* in *longer*|*two*) sleep 0.5;; esac; real \"$@\"");
        WindowDriver driver;
        QVERIFY(driver.add({workPath("one.pdf")}));
        driver.choose("Invoice number", 0, output->path());
        driver.click("runButton");
        driver.drop(workPaths({"longer.pdf", "two.pdf"}));
        QTRY_VERIFY(driver.isEnabled("removeButton"));
        QCOMPARE(driver.column(3), QStringList(3, "Succeed"));
        QCOMPARE(driver.progress().filter("Analyzing page 1").size(), 3);
    }

    /// A window that is closed takes its tools with it.
    void closed_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QString>("work");
        QTest::newRow("counting") << "stavekit"
                                  << "-getinfo";
        QTest::newRow("converting") << "quillrend"
                                    << "-htmlformat";
        QTest::newRow("merging") << "stavekit"
                                 << "-merge";
    }
    void closed()
    {
        QFETCH(QString, tool);
        QFETCH(QString, work);
        QFile::remove("running");
        // Asked to end, it does not: it has to be killed.
        const StandIn standIn(tool, "case $* in *" + work +
                                        "*) trap '' TERM; echo $$ >running; exec sleep 60;;"
                                        " *) real \"$@\";; esac");
        auto driver = std::make_unique<WindowDriver>();
        driver->drop({workPath("one.pdf")});
        if (work != "-getinfo") {
            QVERIFY(driver->waitForPageCounts());
            driver->choose("Invoice number", 0, output->path());
            driver->click("runButton");
        }
        QFile running("running");
        QTRY_VERIFY(running.size() > 0);
        driver.reset();
        QVERIFY(running.open(QIODevice::ReadOnly));
        const int process = running.readAll().trimmed().toInt();
        QVERIFY(process > 0 && ::kill(process, 0) != 0);
        const QStringList written = QDir(output->path()).entryList(QDir::Files | QDir::Hidden);
        QCOMPARE(written, QStringList());
    }
};

SENDRIVO_TEST_MAIN(TestFaults, QApplication)
#include "tst_faults.moc"
