// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "batch/scheduler.h"

#include <QByteArray>
#include <QStringList>

#include <vector>

/// The name as text. Throws pdf::Error(Usage) when it is not valid UTF-8: what would be left of it
/// could be the name of another file.
[[nodiscard]] QString decodedName(const QByteArray &bytes);

/// The inputs of a call as absolute paths: those given, and those in the lists, from a file or,
/// for "-", from standard input. A list that holds a NUL is separated by NULs, else by line feeds;
/// empty entries do not count. What is listed twice, also by way of linked folders, is taken once.
/// Throws pdf::Error(Usage) when a list cannot be read, or a name in it is not UTF-8.
[[nodiscard]] QStringList collectInputs(const BatchOptions &options);

/// The inputs by the folders of their documents, groups and inputs in the order given.
[[nodiscard]] std::vector<InputGroup> groupInputs(const QString &outputFolder,
                                                  const QStringList &inputs);

/// Finds what would fail for every document, or for all of a group: an output folder that does not
/// exist, a subfolder whose name a file has, folders that cannot be written to.
/// Throws pdf::Error(OutputUnwritable).
void checkFolders(const QString &outputFolder, const std::vector<InputGroup> &groups);
