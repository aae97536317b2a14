// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/samplepdf.h"

#include <QGuiApplication>

#include <cstdio>

/// Writes the example batch: makesample FILE
int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs("usage: makesample FILE\n", stderr);
        return 2;
    }
    if (!writeSamplePdf(arguments.at(1), exampleInvoices())) {
        std::fprintf(stderr, "makesample: %s cannot be written\n", argv[1]);
        return 5;
    }
    return 0;
}
