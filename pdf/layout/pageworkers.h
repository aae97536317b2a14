// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/error.h"
#include "pdf/isolation/limits.h"
#include "pdf/isolation/sandbox.h"

#include <functional>
#include <string>

namespace pdf {

/// Work on single pages in confined processes of their own, so that a page that takes too long, too
/// much memory or crashes the reader is lost alone, and one that takes the reader over gains
/// little.
struct PageWork
{
    int pageCount = 0;
    int workerCount = 1;
    /// Longest processor time that one page may take. How long that lasts is a matter of what else
    /// the machine does.
    int secondsPerPage = pageTimeLimitSeconds;
    /// Longest time without using the processor; while the processes are stopped none passes.
    int secondsOfStall = stallTimeLimitSeconds;
    /// Longest processor time of the whole work, which fails then; 0: no limit.
    int secondsInAll = 0;
    /// What each worker process may touch; nothing unless stated.
    Permissions permissions;
    /// Called in each worker process once; gives the function that converts the page of an index.
    /// What it throws itself ends the whole work. The function's Error of OutputUnwritable does,
    /// too; any other exception of it gives the page up.
    std::function<std::function<void(int index)>()> startWorker;
    /// Called in any of the processes for each page given up (index from 0) and for what ends the
    /// whole work (index -1).
    std::function<void(int index, const std::string &cause)> report;
};

/// Does the work and returns Done, DoneInPart when pages were given up, or what ended it. Every
/// index is given to one worker once. Throws NoProcess when not a single worker can be started.
[[nodiscard]] ExitCode workOnPages(const PageWork &work);

/// Workers worth starting for that many pages on this machine.
[[nodiscard]] int usefulWorkerCount(int pageCount);

} // namespace pdf
