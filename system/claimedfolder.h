// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "system/folderdescriptor.h"

#include <functional>
#include <string>
#include <vector>

/// Folders that belong to one running process. The process holds a lock on the folder itself, which
/// the system takes away with the process, however that ends; a file in it marks it as one of these
/// from the moment the lock is held. So a marked folder whose lock is free is abandoned, one that
/// is just being made is not marked yet, and somebody's folder that happens to have such a name
/// never is. (Services that clear old files out of temporary folders leave locked ones alone, too.)
///
/// Paths and names are bytes, as the system gives them.

/// What tells folders of one kind from all others.
struct FolderKind
{
    const char *namePrefix; ///< six characters at least follow it
    const char *markName;   ///< of the file that marks them
};

/// Locks and marks the folder `path`, which this process has just made for itself. Keep the
/// descriptor as long as the folder is in use. It is not open when there is no such folder any
/// more.
[[nodiscard]] FolderDescriptor claimFolder(const std::string &path, const FolderKind &kind);

/// Removes the open folder, which is at `path`, with all that is in it. Links are removed, not
/// followed. Returns whether nothing is left.
bool removeClaimedFolder(const FolderDescriptor &folder, const std::string &path,
                         const FolderKind &kind);

/// Decides about a folder that no process is known to hold; the lock is known to be free except
/// where the file system has no locks.
using IsAbandoned =
    std::function<bool(const FolderDescriptor &folder, const std::string &name, bool isLockFree)>;
/// Removes the folders of this kind and this user in `parent` that are abandoned.
void removeAbandonedFolders(const std::string &parent, const FolderKind &kind,
                            const IsAbandoned &isAbandoned);

/// Whether `parent` holds any folder of this kind and this user, in use or not.
[[nodiscard]] bool hasClaimedFolder(const std::string &parent, const FolderKind &kind);

/// The names in an open folder.
[[nodiscard]] std::vector<std::string> namesIn(const FolderDescriptor &folder);
