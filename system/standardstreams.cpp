// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "system/standardstreams.h"

#include <fcntl.h>
#include <unistd.h>

void openMissingStreams()
{
    // The system gives the lowest free number.
    int file = 0;
    while (file >= 0 && file <= STDERR_FILENO)
        file = ::open("/dev/null", O_RDWR);
    if (file >= 0)
        ::close(file);
}
