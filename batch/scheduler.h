// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "batch/documentnames.h"
#include "batch/fileresult.h"

#include <QStringList>

#include <functional>
#include <vector>

/// Inputs whose documents share a folder, or may do so where case makes no difference: they are
/// split one after another, and each knows what names the others have taken.
struct InputGroup
{
    QStringList inputs; ///< absolute paths
    TakenPlaces taken;
};

/// How far the whole run is.
struct RunState
{
    int filesDone = 0;
    int files = 0;
    long long pagesDone = 0;
    double share = 0; ///< of all bytes, 0 to 1
};

/// What the run tells while it goes on.
struct RunListener
{
    std::function<void(const FileResult &result)> fileDone;
    std::function<void(const RunState &state)> tick; ///< several times a second
};

/// Splits all inputs, up to `jobs` groups side by side, each input in a process of its own: what
/// crashes or stalls it costs that input alone. Where there are fewer inputs than `jobs`, the pages
/// of an input are read by several processes.
///
/// SIGINT, SIGTERM and SIGHUP end the run: inputs whose documents are being published are finished,
/// all others leave nothing. Returns the signal, or 0. What the listener throws, or the system
/// having no further process, ends the run in the same way and is thrown when it has ended.
[[nodiscard]] int runGroups(const SplitPlan &plan, std::vector<InputGroup> groups, int jobs,
                            const RunListener &listener);

/// Processors that this process may use.
[[nodiscard]] int availableProcessors();
