// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "batch/documentnames.h"
#include "batch/earlierdocuments.h"

#include <QHash>
#include <QString>

/// The report of runs: one JSON object a line for each input, written when its documents are
/// published. Lines are appended whole, so several runs can share a report.
class Report
{
public:
    /// Opens the report, empty unless `isResuming`; then what it says so far is read. A dry run
    /// reads only, and does without a report that does not exist.
    /// Throws pdf::Error: OutputUnwritable; Usage when the file is read by this run or has been
    /// something else than a report so far.
    Report(const QString &path, const SplitPlan &plan, bool isResuming);
    ~Report();
    Report(const Report &) = delete;
    Report &operator=(const Report &) = delete;

    /// Whether an entry shows the input as done: written for the same rule,
    /// position, method, naming and output options, when the input had the size and time that it
    /// has now, without a failure, and with all its documents still there.
    [[nodiscard]] bool isDoneBefore(const QString &input) const;

    /// The places of all documents of which the report tells, of this request or another: they are
    /// documents of their inputs, which may not be among those of this run.
    [[nodiscard]] const QHash<QString, TakenPlaces> &placesByFolder() const { return places; }

    /// Removes what earlier runs of the report wrote of the input and this one does not, so that
    /// only its documents are left, and appends the result. Returns the paths that were removed.
    /// Throws pdf::Error(OutputUnwritable).
    QStringList append(const FileResult &result);

private:
    void refuseOtherFiles() const;
    void read();
    void write(const QByteArray &line);
    [[noreturn]] void fail() const;

    QString path;
    const SplitPlan &plan;
    QHash<QString, FileResult> doneInputs;
    QHash<QString, TakenPlaces> places; ///< by folderKey()
    EarlierDocuments earlierDocuments;
    int file = -1;
};

/// A result with what was asked for: an entry of the report.
[[nodiscard]] QJsonObject reportEntry(const FileResult &result, const SplitPlan &plan);
