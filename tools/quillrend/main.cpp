// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tools/quillrend/quillrend.h"

int main(int argc, char *argv[])
{
    return runQuillrend(argc, argv);
}
