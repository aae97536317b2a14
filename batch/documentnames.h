// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "batch/fileresult.h"
#include "split/splitdecision.h"

#include <QHash>
#include <QSet>

#include <functional>

/// Paths of documents that inputs of this run have written or are about to write, with the input.
using TakenPaths = QHash<QString, QString>;

/// Whether the file at the path is the document with this index (from 0), written by an earlier
/// run.
using IsWritten = std::function<bool(int index, const QString &path)>;

/// The documents of an input with their paths, all fixed before the first is published: unlike each
/// other and `taken`, and as `plan.existing` wants it, unlike files that exist; those that
/// `isWritten`, if it is given, knows do not count.
/// Throws pdf::Error(OutputUnwritable): for a name longer than file systems take, for an existing
/// file that must not be replaced, and for a path that is itself a file this run reads.
[[nodiscard]] QList<DocumentResult> nameDocuments(const SplitPlan &plan, const QString &input,
                                                  const SplitDecision &decision,
                                                  const TakenPaths &taken,
                                                  const IsWritten &isWritten);
