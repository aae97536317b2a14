// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "system/folderdescriptor.h"

#include <QByteArray>

/// A temporary folder that only this process and the tools it starts use: page texts of one window
/// must never be read by another window or another user. While the object lives it is the process's
/// temporary folder (TMPDIR); with the object it is removed. Those that killed windows left behind
/// are removed when one is made.
///
/// When no such folder can be made the temporary folder stays as it was.
class PrivateTemporaryFolder
{
public:
    PrivateTemporaryFolder();
    ~PrivateTemporaryFolder();
    Q_DISABLE_COPY_MOVE(PrivateTemporaryFolder)

    /// Removes the folder before its time: for a program that ends without its destructors.
    void remove() const;

private:
    QByteArray earlierFolder;
    QByteArray path;
    FolderDescriptor folder; ///< holds the lock that says that the window lives
};
