// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

/// A hidden folder inside the folder of a file's documents, in which they are written until all of
/// them are whole. It disappears with the object. A killed process leaves it behind; it is held by
/// a lock, so the next one recognises and removes it, on other machines, too.
class StagingFolder
{
public:
    /// Creates `folder` if needed (its parent must exist) and the hidden one in it.
    /// Throws pdf::Error(OutputUnwritable).
    explicit StagingFolder(const QString &folder);
    ~StagingFolder();
    StagingFolder(const StagingFolder &) = delete;
    StagingFolder &operator=(const StagingFolder &) = delete;

    /// Where the document with this index (from 0) is written.
    [[nodiscard]] QString pathOf(int index) const;
    /// Whether the file at the path is the document with this index, to the byte.
    [[nodiscard]] bool isPublished(int index, const QString &path) const;
    /// Gives the documents their names, in this order. Unless `mayReplace`, a file that has such a
    /// name and is not the document already makes it fail. On failure those that were named are
    /// removed again, and the files that they had replaced have their names back.
    /// Throws pdf::Error(OutputUnwritable).
    void publish(const QStringList &paths, bool mayReplace);

private:
    bool create();
    [[nodiscard]] QString keptPathOf(int index) const;
    void takeBack(const QStringList &paths, int failed) const;
    [[noreturn]] static void fail(const QString &path);

    QString parent;
    bool isParentNew = false;
    QString hidden;
    int lock = -1;
};

/// Removes the staging folders in `folder` that nobody holds any more.
void removeAbandonedStaging(const QString &folder);
/// Whether there is any staging folder in `folder`, held or not.
[[nodiscard]] bool hasStaging(const QString &folder);
