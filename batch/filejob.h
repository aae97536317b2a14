// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "batch/documentnames.h"
#include "batch/fileprogress.h"
#include "batch/fileresult.h"

/// One input and what it may use.
struct FileJob
{
    QString input; ///< absolute path
    int workers = 1;
    TakenPlaces taken;
};

/// Splits one input: reads its pages, decides, fixes all names, writes the documents aside and
/// publishes them when all are whole. Every failure is in the result. Signals that would end the
/// process are held back from the moment the first document is published.
[[nodiscard]] FileResult splitFile(const SplitPlan &plan, const FileJob &job,
                                   FileProgress &progress);
