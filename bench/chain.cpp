// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/process.h"
#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "split/toolcommands.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextEdit>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int fragmentsPerPage = 300;
const Subtext rulePlace = {600, 173, 50, 15, {}};

/// The layout of a page with many fragments, the last of which is at the rule's place.
QByteArray layout(int document)
{
    const auto line = [](int left, int top, const QByteArray &text) {
        return "<span style=\"left:" + QByteArray::number(left) +
               ";top:" + QByteArray::number(top) + ";width:93;height:15\">" + text + "</span>\n";
    };
    QByteArray lines;
    for (int k = 0; k < fragmentsPerPage; ++k)
        lines += line(60 + k % 7, 100 + k, "Copy paper A4, white");
    return lines + line(rulePlace.left, rulePlace.top, "INV-" + QByteArray::number(document));
}

} // namespace

/// What the window itself costs in a split: the tools beside this program do nothing, and the page
/// layouts are there already. usage: chain [PAGES [PAGES-A-DOCUMENT]]
int main(int argc, char *argv[])
{
    const int pages = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int pagesPerDocument = argc > 2 ? std::atoi(argv[2]) : 5;
    const QTemporaryDir folder;
    qputenv("TMPDIR", QFile::encodeName(folder.path()));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QDir::setCurrent(folder.path());
    // Qt's own remarks would be timed as well.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const QApplication application(argc, argv);
    {
        QSettings settings(settingsFileName(), QSettings::IniFormat);
        saveRule(settings, QStringLiteral("rule"), rulePlace);
    }
    for (int page = 1; page <= pages; ++page) {
        QFile file(layoutFile(folder.path(), page));
        if (!file.open(QIODevice::WriteOnly))
            return 5;
        file.write(layout(page / pagesPerDocument));
    }

    Process window;
    window.show();
    auto *table = window.findChild<QTableWidget *>();
    table->insertRow(0);
    table->setItem(0, 0, new QTableWidgetItem(folder.filePath(QStringLiteral("in.pdf"))));
    table->setItem(0, 1, new QTableWidgetItem(QString::number(pages)));
    window.findChild<QLineEdit *>(QStringLiteral("outputfolderEdit"))->setText(folder.path());
    const auto *progress = window.findChild<QTextEdit *>();

    QElapsedTimer clock;
    qint64 pagesDone = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (pagesDone == 0 && progress->document()->blockCount() > pages + 2)
            pagesDone = clock.elapsed();
        if (progress->document()->lastBlock().text() == QLatin1String("Conversion Finished."))
            QApplication::quit();
    });
    watch.start(5);
    clock.start();
    window.convertbegin();
    QApplication::exec();
    const qint64 all = clock.elapsed();
    const int documents = (pages + pagesPerDocument - 1) / pagesPerDocument;
    std::printf("%d pages of %d fragments, %.3f ms each; %d documents, %.3f ms each with a process "
                "that does nothing\n",
                pages, fragmentsPerPage, static_cast<double>(pagesDone) / pages, documents,
                static_cast<double>(all - pagesDone) / documents);
    return 0;
}
