// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class QSettings;

/// The output options that can be applied to a document, as the options window would show them.
struct OutputOptions
{
    QMap<QString, QString> information; ///< by PDF key ("/Title"); fields left empty are missing
    QString userPassword;
    QString ownerPassword;
    bool mayPrint = true;
    bool mayModify = true;
    bool mayCopy = true;
    bool mayAnnotate = true;

    bool isPdfA = false;
    /// The first option that cannot be read as what it has to be, and why; else empty. The others
    /// are not to be relied on then: a document could be less protected than was asked for.
    QString fault;
    /// Options that have no effect here although they were set, one sentence each.
    QStringList remarks;
};

/// Reads the options from the settings.
[[nodiscard]] OutputOptions readOutputOptions(const QSettings &settings);
