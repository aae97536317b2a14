// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/displaycheck.h"
#include "app/plugins.h"
#include "options/opdialog.h"
#include "system/standardstreams.h"

#include <QApplication>

#include <optional>

namespace {

void ignoreMessage(QtMsgType, const QMessageLogContext &, const QString &)
{
}

} // namespace

/// sendrivo-options: the options window alone, for the setting.ini of the working directory. The
/// options are applied by sendrivo-batch.
int main(int argc, char *argv[])
{
    openMissingStreams();
    QCoreApplication::setApplicationName(QStringLiteral("sendrivo-options"));
    // Qt says in five lines of its own what the display check says in one.
    const QtMessageHandler usualHandler = qInstallMessageHandler(ignoreMessage);
    std::optional<DisplayCheck> displayCheck("sendrivo-options: no usable display: is DISPLAY or "
                                             "WAYLAND_DISPLAY that of a running one?\n");
    const QApplication application(argc, argv);
    if (QGuiApplication::screens().isEmpty())
        qFatal("No screen"); // which Qt itself would notice only when a window is shown
    displayCheck.reset();
    qInstallMessageHandler(usualHandler);
    usePlugins();
    OpDialog dialog;
    dialog.show();
    return QApplication::exec();
}
