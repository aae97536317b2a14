// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/folderdescriptor.h"

class QByteArray;

/// Folders that belong to one running process. The process holds a lock on the folder itself, which
/// the system takes away with the process, however that ends; a file in it marks it as one of these
/// from the moment the lock is held. So a marked folder whose lock is free is abandoned, one that
/// is just being made is not marked yet, and somebody's folder that happens to have such a name
/// never is. (Services that clear old files out of temporary folders leave locked ones alone, too.)
///
/// On file systems without locks nothing is ever taken for abandoned.

/// Locks and marks the folder `path`, which this process has just made for itself. Keep the
/// descriptor as long as the folder is in use.
[[nodiscard]] FolderDescriptor claimFolder(const QByteArray &path);

/// Removes a claimed folder with all that is in it, or what stands in its place now when it was
/// removed and made again meanwhile. Links are removed, not followed. Returns whether nothing is
/// left.
bool removeClaimedFolder(const FolderDescriptor &folder, const QByteArray &path);

/// Removes the abandoned folders `namePrefix`?????? of this user in `parent`.
void removeAbandonedFolders(const QByteArray &parent, const QByteArray &namePrefix);
