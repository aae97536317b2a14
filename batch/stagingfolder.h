// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/mappedfile.h"
#include "system/folderdescriptor.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <set>
#include <vector>

/// A hidden folder inside the folder of a file's documents, in which they are written until all of
/// them are whole. It disappears with the object. A killed process leaves it behind, and the next
/// run removes it (batch/stagingsweep.h).
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
    /// Gives the documents their names, in this order. Returns false when, without `mayReplace`, a
    /// file that is not the document has such a name: then all are here again. On other failures
    /// those that were named are gone, and the files that they had replaced have their names back.
    /// Throws pdf::Error(OutputUnwritable).
    [[nodiscard]] bool publish(const QStringList &paths, bool mayReplace);

private:
    /// What has been done about a document's name so far.
    struct Step
    {
        QByteArray document; ///< here
        QByteArray target;
        bool hasKept = false; ///< a file that had the name
        bool isNamed = false;
    };

    bool create();
    bool giveName(Step &step, bool mayReplace);
    [[nodiscard]] bool keepFile(const QByteArray &path) const;
    [[nodiscard]] QByteArray keptPath(const QByteArray &path) const;
    void takeBack(const std::vector<Step> &steps) const;
    [[noreturn]] static void fail(const QString &path);

    QString parent;
    bool isParentNew = false;
    QByteArray hidden;
    FolderDescriptor claim;
    std::set<pdf::FileIdentity> published;
};

/// Clears away what ended processes of this system have left in `folder`. Returns whether any
/// staging folder is left there.
[[nodiscard]] bool clearStaging(const QString &folder);
