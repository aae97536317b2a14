// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLockFile>
#include <QString>

/// The file through which stavekit reports page counts to this window: "fileinfo.txt" in the
/// application folder for the window that holds the lock beside it, "fileinfo.txt" in the private
/// working folder for all others, and for all windows of an installation that cannot be written to.
class PageInfoFile
{
public:
    /// Takes the file in `folder`, the application folder, if no other window has it.
    explicit PageInfoFile(const QString &folder);

    /// The path to give to the next count, where nothing is left of an earlier one. Empty when
    /// there is no such place.
    [[nodiscard]] QString prepare();

    /// To be called when a count left no file: from now on the working folder is used. Returns
    /// false when it was used already.
    bool leaveApplicationFolder();

private:
    QString applicationFolder; ///< empty when its file is not ours
    QLockFile lock;
};
