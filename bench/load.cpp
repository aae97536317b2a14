// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/logfile.h"
#include "app/messagehandler.h"
#include "bench/heartbeat.h"
#include "mainwindow/process.h"
#include "rules/rulestore.h"
#include "rules/settingsfile.h"

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextEdit>
#include <QUrl>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Where make_invoices puts the invoice number.
const Subtext rulePlace = {640, 71, 60, 15, {}};
constexpr int pagesPerDocument = 4;

/// The table that is printed, and whether all bounds were kept.
class Report
{
public:
    void line(const char *name, double value, const char *unit, double limit)
    {
        const bool isKept = value < limit;
        allKept = allKept && isKept;
        std::printf("| %-38s | %9.2f %-2s | %7.2f | %-6s |\n", name, value, unit, limit,
                    isKept ? "kept" : "MISSED");
    }
    bool allKept = true;
};

double residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const qint64 pages = file.readAll().split(' ').value(1).toLongLong();
    return static_cast<double>(pages * ::sysconf(_SC_PAGESIZE)) / 1e6;
}

qsizetype openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files).size();
}

bool hasChildProcesses()
{
    return ::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
}

/// A time, and how much of it the window's thread had a processor.
struct Moment
{
    double milliseconds = 0;
    double processorMilliseconds = 0;
};

/// The window, used by its widgets, and what it costs.
class Load
{
public:
    Load()
    {
        window.show();
        window.findChild<QLineEdit *>(QStringLiteral("outputfolderEdit"))
            ->setText(QDir::currentPath() + QStringLiteral("/out"));
        QApplication::processEvents();
        descriptorsBefore = openDescriptors();
        megabytesBefore = megabytesMost = residentMegabytes();
        QObject::connect(&heartbeat, &Heartbeat::beat, &window, [this] { look(); });
    }

    void drop(const QStringList &paths)
    {
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        QMimeData data;
        data.setUrls(urls);
        QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
        window.dropEvent(&event);
    }
    void waitForPageCounts()
    {
        const auto *add = window.findChild<QPushButton *>(QStringLiteral("openfileButton"));
        run([] {}, [add] { return add->isEnabled(); });
    }
    void split()
    {
        linesBefore = progress()->blockCount();
        run([this] { window.convertbegin(); },
            [this] {
                return progress()->lastBlock().text() == QLatin1String("Conversion Finished.");
            });
    }
    void sortBy(int column)
    {
        table()->horizontalHeader()->setSortIndicator(column, Qt::AscendingOrder);
    }
    [[nodiscard]] QTableWidget *table() const { return window.findChild<QTableWidget *>(); }

    /// The time from line `first` to `last` of the latest split's progress.
    [[nodiscard]] Moment timeOfLines(int first, int last) const
    {
        const Moment start = lineShownAt.value(first);
        const Moment end = lineShownAt.value(last);
        return {end.milliseconds - start.milliseconds,
                end.processorMilliseconds - start.processorMilliseconds};
    }
    void report(Report &report)
    {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        report.line("memory, growth", megabytesMost - megabytesBefore, "MB", 50);
        report.line("descriptors left", double(openDescriptors() - descriptorsBefore), "", 1);
        report.line("processes left", hasChildProcesses() ? 1 : 0, "", 1);
        report.line("longest gap of the event loop", heartbeat.longest().value(0).milliseconds,
                    "ms", 50);
        for (const Gap &gap : heartbeat.longest())
            std::printf("    gap of %.1f ms, and %.1f ms for a processor, after \"%s\"\n",
                        gap.milliseconds, gap.waitedMilliseconds, qPrintable(gap.after));
    }

    Process window;

private:
    [[nodiscard]] QTextDocument *progress() const
    {
        return window.findChild<QTextEdit *>(QStringLiteral("textEdit_process"))->document();
    }
    void look()
    {
        const int lines = progress()->blockCount() - linesBefore;
        const Moment now = {static_cast<double>(clock.nsecsElapsed()) / 1e6,
                            threadProcessorMilliseconds()};
        while (lineShownAt.size() <= lines)
            lineShownAt.append(now);
        heartbeat.setActivity(progress()->lastBlock().text().left(60));
        if (++looks % 50 == 0)
            megabytesMost = std::max(megabytesMost, residentMegabytes());
    }
    void run(const std::function<void()> &begin, const std::function<bool()> &isReached)
    {
        lineShownAt.clear();
        clock.start();
        heartbeat.start();
        begin();
        while (!isReached())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        look();
        heartbeat.stop();
        megabytesMost = std::max(megabytesMost, residentMegabytes());
    }

    Heartbeat heartbeat;
    QElapsedTimer clock;
    QList<Moment> lineShownAt;
    int linesBefore = 0;
    int looks = 0;
    qsizetype descriptorsBefore = 0;
    double megabytesBefore = 0;
    double megabytesMost = 0;
};

bool makeInvoices(const QString &path, int pages)
{
    return QProcess::execute(
               QCoreApplication::applicationDirPath() + QLatin1String("/make_invoices"),
               {path, QString::number(pages), QString::number(pagesPerDocument)}) == 0;
}

QStringList makeFiles(int count, int pages)
{
    QStringList paths;
    const QString folder = QDir::currentPath();
    for (int k = 0; k < count; ++k) {
        paths.append(QStringLiteral("%1/in%2.pdf").arg(folder).arg(k, 4, 10, QLatin1Char('0')));
        const bool isMade = k == 0 ? makeInvoices(paths.constFirst(), pages)
                                   : QFile::copy(paths.constFirst(), paths.constLast());
        if (!isMade)
            qFatal("Cannot write %s", qPrintable(paths.constLast()));
    }
    return paths;
}

/// Reports the time of `count` steps, of which step k begins with line first + k * lines, and how
/// much longer the last third of them took than the first.
void reportSteps(Report &report, const char *name, const Load &load, int first, int count,
                 int lines = 1)
{
    const int third = count / 3 * lines;
    const int end = first + count * lines;
    const Moment all = load.timeOfLines(first, end);
    const Moment atStart = load.timeOfLines(first, first + third);
    const Moment atEnd = load.timeOfLines(end - third, end);
    std::printf("%d %s, %.3f ms each, %.3f ms of it the window's processor time\n", count, name,
                all.milliseconds / count, all.processorMilliseconds / count);
    report.line("time, last third / first", atEnd.milliseconds / atStart.milliseconds, "", 1.5);
    report.line("window's share, last third / first",
                atEnd.processorMilliseconds / atStart.processorMilliseconds, "", 1.5);
}

void measureFiles(Report &report)
{
    constexpr int files = 300;
    constexpr int pages = 20;
    const QStringList paths = makeFiles(files, pages);
    Load load;
    load.drop(paths);
    load.waitForPageCounts();
    load.split();
    constexpr int lines = 1 + pages + pages / pagesPerDocument;
    reportSteps(report, "files of 20 pages", load, 2, files, lines);
    load.report(report);
}

void measurePages(Report &report)
{
    constexpr int pages = 10000;
    constexpr int documents = pages / pagesPerDocument;
    const QStringList paths = makeFiles(1, pages);
    Load load;
    load.drop(paths);
    load.waitForPageCounts();
    load.split();
    // Lines: start, path, pages, documents. The path stays alone until the tool is done.
    reportSteps(report, "pages", load, 3, pages);
    reportSteps(report, "documents", load, 3 + pages, documents);
    load.split(); // once more: the layouts of the first time are in the way
    load.report(report);
}

void measureRows(Report &report)
{
    const QStringList paths = makeFiles(5000, 1);
    Load load;
    const auto time = [&report](const char *name, const auto &action) {
        QElapsedTimer clock;
        clock.start();
        action();
        QApplication::processEvents();
        report.line(name, static_cast<double>(clock.nsecsElapsed()) / 1e6, "ms", 1000);
    };
    std::printf("%d rows\n", static_cast<int>(paths.size()));
    time("add", [&] { load.drop(paths); });
    load.waitForPageCounts();
    time("sort by name", [&] { load.sortBy(0); });
    time("sort by name, backwards", [&] { load.sortBy(0); });
    time("sort by pages", [&] { load.sortBy(1); });
    time("sort by size", [&] { load.sortBy(2); });
    time("select all", [&] { load.table()->selectAll(); });
    time("move all up", [&] { load.window.setrowup(); });
    time("select all again", [&] { load.table()->selectAll(); });
    time("remove all selected", [&] { load.window.setremove(); });
    time("add again", [&] { load.drop(paths); });
    load.waitForPageCounts();
    time("clear", [&] { load.window.setremoveall(); });
    load.report(report);
}

struct Part
{
    const char *name;
    void (*measure)(Report &report);
};

constexpr Part parts[] = {{"files", measureFiles}, {"pages", measurePages}, {"rows", measureRows}};

} // namespace

/// The window with its tools under load: many files, a long file, a long table. Exit code 1 when a
/// bound is missed. usage: load [files|pages|rows]
int main(int argc, char *argv[])
{
    if (argc < 2) {
        // A process each, so that no part lives on memory that another one has freed.
        bool allKept = true;
        for (const Part &part : parts)
            allKept = QProcess::execute(QString::fromLocal8Bit(argv[0]),
                                        {QString::fromLatin1(part.name)}) == 0 &&
                      allKept;
        return allKept ? 0 : 1;
    }
    const QTemporaryDir folder;
    for (const char *name : {"work", "work/out", "tmp", "data"})
        QDir(folder.path()).mkdir(QString::fromLatin1(name));
    qputenv("TMPDIR", QFile::encodeName(folder.filePath(QStringLiteral("tmp"))));
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(QStringLiteral("data"))));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QDir::setCurrent(folder.filePath(QStringLiteral("work")));
    QCoreApplication::setApplicationName(QStringLiteral("sendrivo"));
    QDir().mkpath(dataFolder());
    qInstallMessageHandler(customMessageHandler);
    const QApplication application(argc, argv);
    {
        QSettings settings(settingsFileName(), QSettings::IniFormat);
        saveRule(settings, QStringLiteral("rule"), rulePlace);
    }
    Report report;
    for (const Part &part : parts)
        if (qstrcmp(argv[1], part.name) == 0)
            part.measure(report);
    return report.allKept ? 0 : 1;
}
