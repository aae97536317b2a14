// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/stagingfolder.h"

#include "pdf/error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QLatin1String hiddenName(".sendrivo-staging-");

QStringList stagingFolders(const QString &folder)
{
    return QDir(folder).entryList({hiddenName + QLatin1Char('*')}, QDir::Dirs | QDir::Hidden);
}

/// Renames; without `mayReplace` a file that has the new name makes it fail.
bool renameFile(const QByteArray &from, const QByteArray &to, bool mayReplace)
{
    if (mayReplace)
        return ::rename(from.constData(), to.constData()) == 0;
    // A link fails where the name is taken.
    if (::link(from.constData(), to.constData()) == 0)
        return ::unlink(from.constData()) == 0;
    const bool knowsNoLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
    return knowsNoLinks && ::access(to.constData(), F_OK) != 0 &&
           ::rename(from.constData(), to.constData()) == 0;
}

bool haveSameBytes(const QString &path, const QString &otherPath)
{
    constexpr qint64 chunk = 1 << 20;
    QFile first(path);
    QFile second(otherPath);
    if (!first.open(QIODevice::ReadOnly) || !second.open(QIODevice::ReadOnly) ||
        first.size() != second.size())
        return false;
    while (!first.atEnd()) {
        const QByteArray bytes = first.read(chunk);
        if (bytes.isEmpty() || bytes != second.read(chunk))
            return false;
    }
    return true;
}

/// Gives the file a second name, so that it outlives being replaced; moves it where that is not
/// possible. True, too, when there is no file.
bool keepFile(const QByteArray &path, const QByteArray &kept)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return errno == ENOENT;
    // What is kept is deleted in the end, and a folder that is in the way must not be.
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    return ::link(path.constData(), kept.constData()) == 0 ||
           ::rename(path.constData(), kept.constData()) == 0;
}

} // namespace

StagingFolder::StagingFolder(const QString &folder) : parent(folder)
{
    removeAbandonedStaging(parent);
    // Other runs get in the way only for moments, a link that leads nowhere does for good.
    constexpr int attempts = 100;
    for (int i = 1; !create(); ++i) {
        if (i == attempts)
            fail(parent);
    }
}

/// False when another process took the new folder for an abandoned one before it was locked, or
/// removed the parent, which was still empty.
bool StagingFolder::create()
{
    if (::mkdir(QFile::encodeName(parent).constData(), 0777) == 0)
        isParentNew = true;
    else if (errno != EEXIST)
        fail(parent);
    QByteArray name = QFile::encodeName(parent) + '/' + hiddenName.data() + "XXXXXX";
    const bool isMade = ::mkdtemp(name.data()) != nullptr;
    lock = isMade ? ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    if (lock < 0) {
        const int cause = errno;
        if (isMade)
            ::rmdir(name.constData());
        errno = cause;
        if (cause != ENOENT)
            fail(parent);
        return false;
    }
    // A file system without locks leaves the folder unlocked, and nobody takes it for abandoned.
    struct stat status = {};
    const bool isTaken = ::flock(lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (!isTaken && ::stat(name.constData(), &status) == 0) {
        hidden = QFile::decodeName(name);
        return true;
    }
    ::close(lock);
    return false;
}

StagingFolder::~StagingFolder()
{
    QDir(hidden).removeRecursively();
    ::close(lock);
    // Only an empty folder can be removed this way.
    if (isParentNew)
        ::rmdir(QFile::encodeName(parent).constData());
}

void StagingFolder::fail(const QString &path)
{
    const std::string cause = std::strerror(errno);
    throw pdf::Error(pdf::ExitCode::OutputUnwritable, path.toStdString() + ": " + cause);
}

QString StagingFolder::pathOf(int index) const
{
    return hidden + QLatin1Char('/') + QString::number(index + 1) + QLatin1String(".pdf");
}

QString StagingFolder::keptPathOf(int index) const
{
    return pathOf(index) + QLatin1String(".old");
}

bool StagingFolder::isPublished(int index, const QString &path) const
{
    return QFileInfo(path).isFile() && haveSameBytes(pathOf(index), path);
}

void StagingFolder::publish(const QStringList &paths, bool mayReplace)
{
    for (int index = 0; index < paths.size(); ++index) {
        const QByteArray target = QFile::encodeName(paths[index]);
        if (!mayReplace && isPublished(index, paths[index]))
            continue;
        if ((!mayReplace || keepFile(target, QFile::encodeName(keptPathOf(index)))) &&
            renameFile(QFile::encodeName(pathOf(index)), target, mayReplace))
            continue;
        const int cause = errno;
        takeBack(paths, index);
        errno = cause;
        fail(paths[index]);
    }
}

void StagingFolder::takeBack(const QStringList &paths, int failed) const
{
    for (int index = failed; index >= 0; --index) {
        const QByteArray target = QFile::encodeName(paths[index]);
        const QByteArray kept = QFile::encodeName(keptPathOf(index));
        const bool wasThere = ::rename(kept.constData(), target.constData()) == 0;
        // What has not left this folder is not what has the name.
        if (!wasThere && errno == ENOENT && !QFile::exists(pathOf(index)))
            ::unlink(target.constData());
    }
}

void removeAbandonedStaging(const QString &folder)
{
    for (const QString &name : stagingFolders(folder)) {
        const QString path = folder + QLatin1Char('/') + name;
        const int held =
            ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (held < 0)
            continue;
        if (::flock(held, LOCK_EX | LOCK_NB) == 0)
            QDir(path).removeRecursively();
        ::close(held);
    }
}

bool hasStaging(const QString &folder)
{
    return !stagingFolders(folder).isEmpty();
}
