// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "system/claimedfolder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

void emptyFolder(const FolderDescriptor &folder, const char *keptName)
{
    for (const std::string &name : namesIn(folder)) {
        if (name == keptName || ::unlinkat(folder.get(), name.c_str(), 0) == 0)
            continue;
        const FolderDescriptor inner(folder.get(), name.c_str());
        if (inner.isOpen())
            emptyFolder(inner, "");
        ::unlinkat(folder.get(), name.c_str(), AT_REMOVEDIR);
    }
}

void mark(const FolderDescriptor &folder, const FolderKind &kind)
{
    const int file =
        ::openat(folder.get(), kind.markName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file >= 0)
        ::close(file);
}

/// Not open for what is not a marked folder of this user.
FolderDescriptor openClaimed(const FolderDescriptor &parent, const std::string &name,
                             const FolderKind &kind)
{
    if (name.compare(0, std::char_traits<char>::length(kind.namePrefix), kind.namePrefix) != 0)
        return {};
    FolderDescriptor folder(parent.get(), name.c_str());
    struct stat status = {};
    const bool isClaimed =
        folder.isOpen() && ::fstat(folder.get(), &status) == 0 && status.st_uid == ::geteuid() &&
        ::fstatat(folder.get(), kind.markName, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISREG(status.st_mode);
    return isClaimed ? std::move(folder) : FolderDescriptor();
}

/// The parent itself may well be reached through a link.
FolderDescriptor openParent(const std::string &path)
{
    return {AT_FDCWD, (path + "/.").c_str()};
}

} // namespace

std::vector<std::string> namesIn(const FolderDescriptor &folder)
{
    std::vector<std::string> names;
    const int again = ::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (again < 0)
        return names;
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::fdopendir(again), ::closedir);
    if (!stream) {
        ::close(again);
        return names;
    }
    while (const dirent *entry = ::readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    return names;
}

FolderDescriptor claimFolder(const std::string &path, const FolderKind &kind)
{
    FolderDescriptor folder(AT_FDCWD, path.c_str());
    if (!folder.isOpen())
        return folder;
    // Waits: somebody who looks for abandoned folders may hold the lock for a moment.
    while (::flock(folder.get(), LOCK_EX) != 0 && errno == EINTR) {
    }
    mark(folder, kind);
    return folder;
}

/// The mark goes last, so that what is interrupted half-way is found by the next program, and comes
/// back if the folder cannot go.
bool removeClaimedFolder(const FolderDescriptor &folder, const std::string &path,
                         const FolderKind &kind)
{
    emptyFolder(folder, kind.markName);
    ::unlinkat(folder.get(), kind.markName, 0);
    if (::rmdir(path.c_str()) == 0 || errno == ENOENT)
        return true;
    mark(folder, kind);
    return false;
}

void removeAbandonedFolders(const std::string &parent, const FolderKind &kind,
                            const IsAbandoned &isAbandoned)
{
    const FolderDescriptor parentFolder = openParent(parent);
    if (!parentFolder.isOpen())
        return;
    for (const std::string &name : namesIn(parentFolder)) {
        const FolderDescriptor folder = openClaimed(parentFolder, name, kind);
        if (!folder.isOpen())
            continue;
        const bool isLockFree = ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
        if ((!isLockFree && errno == EWOULDBLOCK) || !isAbandoned(folder, name, isLockFree))
            continue;
        // A tool of a killed program may still be filling the folder. Under another name it finds
        // the folder no more, and gives up.
        constexpr std::size_t randomCharacters = 6;
        std::string otherPath =
            parent + '/' + name.substr(0, name.size() - randomCharacters) + "XXXXXX";
        if (!::mkdtemp(otherPath.data()))
            continue;
        if (::renameat(parentFolder.get(), name.c_str(), AT_FDCWD, otherPath.c_str()) == 0)
            removeClaimedFolder(folder, otherPath, kind);
        else
            ::rmdir(otherPath.c_str());
    }
}

bool hasClaimedFolder(const std::string &parent, const FolderKind &kind)
{
    const FolderDescriptor folder = openParent(parent);
    const std::vector<std::string> names =
        folder.isOpen() ? namesIn(folder) : std::vector<std::string>();
    return std::any_of(names.begin(), names.end(), [&](const std::string &name) {
        return openClaimed(folder, name, kind).isOpen();
    });
}
