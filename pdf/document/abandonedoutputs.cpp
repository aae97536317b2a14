// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/abandonedoutputs.h"

#include "pdf/document/outputfile.h"

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pdf {

namespace {

bool knowsNamelessFiles(const std::string &folder)
{
    const int file = openNameless(folder);
    if (file >= 0)
        ::close(file);
    return file >= 0;
}

/// Whether the open file is what has the name, and nobody else's.
bool isOurs(int file, int folder, const char *name)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(file, &opened) == 0 &&
           ::fstatat(folder, name, &named, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(opened.st_mode) &&
           opened.st_uid == ::geteuid() && opened.st_nlink == 1 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino;
}

void removeUnlessHeld(int folder, const char *name)
{
    // Some network file systems lock only what may be written.
    const int file = ::openat(folder, name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return;
    if (::flock(file, LOCK_EX | LOCK_NB) == 0 && isOurs(file, folder, name))
        ::unlinkat(folder, name, 0);
    ::close(file);
}

} // namespace

void removeAbandonedOutputs(const std::string &folder)
{
    if (knowsNamelessFiles(folder))
        return;
    const auto close = [](DIR *stream) { ::closedir(stream); };
    const std::unique_ptr<DIR, decltype(close)> stream(::opendir(folder.c_str()), close);
    if (!stream)
        return;
    while (const dirent *entry = ::readdir(stream.get())) {
        if (isTemporaryName(entry->d_name))
            removeUnlessHeld(::dirfd(stream.get()), entry->d_name);
    }
}

} // namespace pdf
