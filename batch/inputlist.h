// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "batch/scheduler.h"

#include <QStringList>

#include <functional>
#include <vector>

/// The inputs of a call.
struct InputFiles
{
    QStringList paths;       ///< absolute
    QStringList undecodable; ///< names that are not UTF-8, as far as they can be shown
};

/// The inputs of a call: those given, and those in the lists, from a file or, for "-", from
/// standard input. A list that holds a NUL is separated by NULs, else by line ends of either kind;
/// empty entries and a byte order mark do not count. What is listed twice, also by way of linked
/// folders, is taken once. Throws pdf::Error(Usage) when a list cannot be read or is UTF-16, and
/// when there are no inputs.
[[nodiscard]] InputFiles collectInputs(const BatchOptions &options);

/// The inputs by the folders of their documents, groups and inputs in the order given.
[[nodiscard]] std::vector<InputGroup> groupInputs(const QString &outputFolder,
                                                  const QStringList &inputs);

/// Throws pdf::Error(OutputUnwritable) for an output folder that does not exist or cannot be
/// written to.
void checkOutputFolder(const QString &outputFolder);
/// Takes inputs out of the groups whose documents would all fail, because their subfolder cannot be
/// made or written to; gives their results.
[[nodiscard]] QList<FileResult> takeOutUnwritable(const QString &outputFolder,
                                                  std::vector<InputGroup> &groups);
/// Takes inputs out of the groups, and groups without inputs out of the list.
void takeOut(std::vector<InputGroup> &groups,
             const std::function<bool(const QString &input)> &isTaken);
