// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/fileresult.h"

#include <QHash>
#include <QString>
#include <QStringList>

/// Which documents earlier runs wrote of each input, so that those can be removed that an input has
/// no more: it may have been half a file then, and documents of both halves side by side look like
/// the documents of one.
class EarlierDocuments
{
public:
    /// Adds what a run wrote of the input; `isSameRequest` tells whether it was asked for the same
    /// as this one. Documents of other requests stay, for somebody may want both.
    void add(const FileResult &result, bool isSameRequest);

    /// Removes the documents of the result's input that are not in the result, and adds the result.
    /// A file stays that has another size than reported or was written of another input, too.
    /// Returns the paths of those that were removed.
    QStringList replaceBy(const FileResult &result);

private:
    struct Written
    {
        qint64 bytes;
        bool isSameRequest;
    };
    using Documents = QHash<QString, Written>; ///< by path
    [[nodiscard]] bool isOfAnotherInput(const QString &path, const QString &input) const;

    QHash<QString, Documents> inputs;
    QMultiHash<QString, QString> sharing; ///< inputs by the name of their folder
};
