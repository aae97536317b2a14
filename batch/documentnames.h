// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "batch/fileresult.h"
#include "split/splitdecision.h"

#include <QHash>

#include <functional>

/// What tells a folder from all others, by whatever way it is reached: what the system knows it by,
/// its path while it does not exist.
[[nodiscard]] QString folderKey(const QString &folder);
/// Equal for names that some file system takes for the same: in other case, or composed otherwise.
[[nodiscard]] QString nameKey(const QString &name);
/// Both of a file in that folder.
[[nodiscard]] QString placeKey(const QString &keyOfFolder, const QString &name);

/// Places (as placeKey() gives them) of documents that inputs of this run, or of runs that its
/// report tells of, have written, with the input.
using TakenPlaces = QHash<QString, QString>;
/// Adds the places of the input's documents.
void addPlaces(TakenPlaces &taken, const FileResult &result);

/// Whether the file at the path is the document with this index (from 0), written by an earlier
/// run.
using IsWritten = std::function<bool(int index, const QString &path)>;

/// The documents of an input with their texts, as a viewer shows them, and their paths, all fixed
/// before the first is published: unlike each other and what others have `taken`, and as
/// `plan.existing` wants it, unlike files that exist; those that `isWritten`, if it is given, knows
/// do not count. Throws pdf::Error(OutputUnwritable): for a name longer than file systems take, for
/// an existing file that must not be replaced, and for a path that is itself a file this run reads.
[[nodiscard]] QList<DocumentResult> nameDocuments(const SplitPlan &plan, const QString &input,
                                                  const SplitDecision &decision,
                                                  const TakenPlaces &taken,
                                                  const IsWritten &isWritten);
