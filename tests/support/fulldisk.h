// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>

/// As long as it lives, this process can write no byte into any file, not even as the superuser.
struct FullDisk
{
    FullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN); // a write fails, and no more
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit none{0, former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &former); }
    Q_DISABLE_COPY_MOVE(FullDisk)

    rlimit former{};
};
