// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tools/stavekit/stavekit.h"

int main(int argc, char *argv[])
{
    return runStavekit(argc, argv);
}
