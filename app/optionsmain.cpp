// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/plugins.h"
#include "options/opdialog.h"

#include <QApplication>

/// sendrivo-options: the options window alone, for the setting.ini of the working directory. The
/// options are applied by sendrivo-batch.
int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(QStringLiteral("sendrivo-options"));
    const QApplication application(argc, argv);
    usePlugins();
    OpDialog dialog;
    dialog.show();
    return QApplication::exec();
}
