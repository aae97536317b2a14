// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/exitcodes.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

/// One document of an input.
struct DocumentResult
{
    QString range;
    QString text;
    QString file; ///< absolute path
    qint64 bytes = 0;
};

/// What became of one input; also a line of the report.
struct FileResult
{
    QString input; ///< absolute path
    qint64 size = 0;
    QString time; ///< of its last change, UTC
    int pages = 0;
    QList<DocumentResult> documents;
    QString verdict;
    QString cause;          ///< why it failed, else empty
    QStringList complaints; ///< one for each page given up, and what is damaged
    QString pagesWithoutText;
    QString pagesWithUnknownLetters;
    pdf::ExitCode exitCode = pdf::ExitCode::Done;
    double seconds = 0;

    [[nodiscard]] bool isDone() const { return exitCode == pdf::ExitCode::Done; }
};

/// The verdicts. All but the last three are good.
namespace verdict {
inline const QString done = QStringLiteral("done");
inline const QString noTextAtPosition = QStringLiteral("no text at the position");
inline const QString noTextLayer = QStringLiteral("no text layer");
inline const QString pagesWithoutTextLayer = QStringLiteral("pages without text layer");
inline const QString damaged = QStringLiteral("damaged");
inline const QString unknownLetters = QStringLiteral("letters without characters");
inline const QString pagesGivenUp = QStringLiteral("pages given up");
inline const QString failed = QStringLiteral("failed");
} // namespace verdict

/// A result that holds what the file itself says now: path, size and time.
[[nodiscard]] FileResult beginResult(const QString &input);
/// The result of an input that failed for the cause given; "INPUT: " in front of it is left out.
[[nodiscard]] FileResult failedResult(const QString &input, pdf::ExitCode code,
                                      const QString &cause);

[[nodiscard]] QJsonObject toJson(const FileResult &result);
[[nodiscard]] FileResult fromJson(const QJsonObject &object);
