// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "system/moving.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

bool moveUnlessTaken(const Place &from, const Place &to)
{
    const char *old = from.name.c_str();
    const char *wanted = to.name.c_str();
    if (::renameat2(from.folder, old, to.folder, wanted, RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // NFS, for one, cannot do that. A link fails where the name is taken.
    if (::linkat(from.folder, old, to.folder, wanted, 0) == 0)
        return ::unlinkat(from.folder, old, 0) == 0;
    if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS)
        return false;
    // Nor links: who takes the name within a moment loses.
    if (::faccessat(to.folder, wanted, F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::renameat(from.folder, old, to.folder, wanted) == 0;
}
