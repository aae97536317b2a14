// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/displaycheck.h"
#include "app/logfile.h"
#include "app/messagehandler.h"
#include "app/plugins.h"
#include "app/privatetemporaryfolder.h"
#include "app/quitonsignal.h"
#include "mainwindow/process.h"
#include "system/standardstreams.h"

#include <QApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>

namespace {

void startLog()
{
    // The log names the user's files. A folder that is there already is left as it is.
    const QFileInfo folder(dataFolder());
    QDir().mkpath(folder.path());
    QDir().mkdir(folder.filePath(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile::remove(logFile());
}

} // namespace

int main(int argc, char *argv[])
{
    openMissingStreams();
    // Named before there is an application object: the log's folder depends on the name, and the
    // first messages come while the application object is being made.
    QCoreApplication::setApplicationName(QStringLiteral("sendrivo"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SENDRIVO_VERSION));
    qInstallMessageHandler(customMessageHandler);
    QuitOnSignal quitOnSignal;
    const PrivateTemporaryFolder temporaryFolder;
    std::optional<DisplayCheck> displayCheck;
    displayCheck.emplace("sendrivo: no usable display: is DISPLAY or WAYLAND_DISPLAY that of a "
                         "running one?\n",
                         &temporaryFolder);
    const QApplication application(argc, argv);
    if (QGuiApplication::screens().isEmpty())
        qFatal("No screen"); // which Qt itself would notice only when a window is shown
    displayCheck.reset();
    quitOnSignal.connectToApplication();
    usePlugins();
    startLog();
    qDebug() << "Current path:" << QDir::currentPath() << "\n";
    Process window;
    window.show();
    return QApplication::exec();
}
