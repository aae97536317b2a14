// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QString>

#include <utility>

/// To which input of a batch files belong: the inputs themselves and their documents. They are
/// known by what the system knows them by and not by how their paths are written, so that no
/// document takes the place of another one, or of an input, through a link or on a file system to
/// which upper and lower case are the same.
class FileOwners
{
public:
    /// The file at `path` belongs to the input `owner`. Nothing when there is no such file.
    void add(const QString &path, const QString &owner);
    void clear();
    /// How often add() was called since clear().
    [[nodiscard]] int count() const { return added; }
    /// The input to which the file at `path` belongs; empty when there is no file or nobody has
    /// added it.
    [[nodiscard]] QString ownerOf(const QString &path) const;

private:
    QHash<QString, QString> ownerOfPath; ///< by paths without links and dots
    QHash<std::pair<quint64, quint64>, QString> ownerOfIdentity;
    int added = 0;
};
