// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/claimedfolder.h"

#include <QByteArray>
#include <QByteArrayList>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

constexpr const char *markName = ".sendrivo-window";

/// The names in an open folder, read before any of them is removed.
QByteArrayList namesIn(const FolderDescriptor &folder)
{
    QByteArrayList names;
    const int again = ::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (again < 0)
        return names;
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::fdopendir(again), ::closedir);
    if (!stream) {
        ::close(again);
        return names;
    }
    while (const dirent *entry = ::readdir(stream.get()))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            names.append(entry->d_name);
    return names;
}

void emptyFolder(const FolderDescriptor &folder, const char *keptName)
{
    for (const QByteArray &name : namesIn(folder)) {
        if (name == keptName || ::unlinkat(folder.get(), name.constData(), 0) == 0)
            continue;
        const FolderDescriptor inner(folder.get(), name.constData());
        if (inner.isOpen())
            emptyFolder(inner, "");
        ::unlinkat(folder.get(), name.constData(), AT_REMOVEDIR);
    }
}

void mark(const FolderDescriptor &folder)
{
    const int file =
        ::openat(folder.get(), markName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file >= 0)
        ::close(file);
}

/// The mark goes last, so that what is interrupted half-way is found by the next window, and comes
/// back if the folder cannot go.
bool removeFolder(const FolderDescriptor &folder, const QByteArray &path)
{
    emptyFolder(folder, markName);
    ::unlinkat(folder.get(), markName, 0);
    if (::rmdir(path.constData()) == 0 || errno == ENOENT)
        return true;
    mark(folder);
    return false;
}

bool isSameFolder(const FolderDescriptor &folder, const FolderDescriptor &other)
{
    struct stat status = {};
    struct stat otherStatus = {};
    return ::fstat(folder.get(), &status) == 0 && ::fstat(other.get(), &otherStatus) == 0 &&
           status.st_dev == otherStatus.st_dev && status.st_ino == otherStatus.st_ino;
}

bool isAbandoned(const FolderDescriptor &folder)
{
    struct stat status = {};
    return ::fstat(folder.get(), &status) == 0 && status.st_uid == ::geteuid() &&
           ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0 &&
           ::fstatat(folder.get(), markName, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISREG(status.st_mode);
}

} // namespace

FolderDescriptor claimFolder(const QByteArray &path)
{
    FolderDescriptor folder(AT_FDCWD, path.constData());
    // Waits: somebody who looks for abandoned folders may hold the lock for a moment.
    if (folder.isOpen() && ::flock(folder.get(), LOCK_EX) == 0)
        mark(folder);
    return folder;
}

bool removeClaimedFolder(const FolderDescriptor &folder, const QByteArray &path)
{
    const FolderDescriptor present(AT_FDCWD, path.constData());
    if (!present.isOpen())
        return true;
    const bool isMadeAgain = !isSameFolder(folder, present);
    return removeFolder(isMadeAgain ? present : folder, path);
}

void removeAbandonedFolders(const QByteArray &parent, const QByteArray &namePrefix)
{
    // The temporary folder itself may well be reached through a link.
    const FolderDescriptor parentFolder(AT_FDCWD, (parent + "/.").constData());
    if (!parentFolder.isOpen())
        return;
    for (const QByteArray &name : namesIn(parentFolder)) {
        if (!name.startsWith(namePrefix) || name.size() != namePrefix.size() + 6)
            continue;
        const FolderDescriptor folder(parentFolder.get(), name.constData());
        if (!folder.isOpen() || !isAbandoned(folder))
            continue;
        // A tool of the killed window may still be filling the folder. Under another name it finds
        // the folder no more, and gives up.
        QByteArray otherPath = parent + '/' + namePrefix + "XXXXXX";
        if (!::mkdtemp(otherPath.data()))
            continue;
        if (::renameat(parentFolder.get(), name.constData(), AT_FDCWD, otherPath.constData()) == 0)
            removeFolder(folder, otherPath);
        else
            ::rmdir(otherPath.constData());
    }
}
