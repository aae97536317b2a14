// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/batch.h"

int main(int argc, char *argv[])
{
    return runBatch(argc, argv);
}
