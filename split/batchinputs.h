// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSet>
#include <QString>

#include <utility>

/// The input files of a batch, known by what they are and not by how their paths are written, so
/// that no document takes the place of one of them.
class BatchInputs
{
public:
    /// Adds the file at `path`; nothing when there is none.
    void add(const QString &path);
    void clear();
    /// How often add() was called since clear().
    [[nodiscard]] int count() const { return added; }
    /// Whether `path` leads to one of the files, by another name or through links, too.
    [[nodiscard]] bool contains(const QString &path) const;

private:
    QSet<QString> paths; ///< without links and dots
    QSet<std::pair<quint64, quint64>> identities;
    int added = 0;
};
