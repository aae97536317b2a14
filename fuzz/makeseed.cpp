// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/markedpdf.h"

/// Writes a small file with everything that stavekit looks at. Usage: makeseed OUT
int main(int argc, char *argv[])
{
    if (argc != 2)
        return 2;
    writeFile(QString::fromLocal8Bit(argv[1]), MarkedPdf(3).bytes());
    return 0;
}
