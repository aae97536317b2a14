// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "batch/fileresult.h"
#include "split/splitdecision.h"

#include <QHash>
#include <QSet>

/// Paths of documents that inputs of this run have written or are about to write, with the input.
using TakenPaths = QHash<QString, QString>;

/// The documents of an input with their paths, all fixed before the first is written: unlike each
/// other and `taken`, and as `plan.existing` wants it, unlike files that exist.
/// Throws pdf::Error(OutputUnwritable): for a name longer than file systems take, for an existing
/// file that must not be replaced, and for a path that is itself a file this run reads.
[[nodiscard]] QList<DocumentResult> nameDocuments(const SplitPlan &plan, const QString &input,
                                                  const SplitDecision &decision,
                                                  const TakenPaths &taken);
