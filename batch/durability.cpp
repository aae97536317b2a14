// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/durability.h"

#include "pdf/error.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

void syncThrough(const QString &folder, int (*synchronise)(int))
{
    const int descriptor =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isDone = descriptor >= 0 && synchronise(descriptor) == 0;
    const int cause = errno;
    if (descriptor >= 0)
        ::close(descriptor);
    // Some file systems have nothing to wait for with a folder, and some no such call at all; and
    // who may write into a folder may not always read it.
    if (!isDone && cause != EINVAL && cause != ENOSYS && cause != EOPNOTSUPP && cause != EACCES)
        throw pdf::Error(pdf::ExitCode::OutputUnwritable,
                         folder.toStdString() + ": " + std::strerror(cause));
}

} // namespace

void syncFileSystemOf(const QString &folder)
{
    syncThrough(folder, ::syncfs);
}

void syncFolder(const QString &folder)
{
    syncThrough(folder, ::fsync);
}
