// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

// What a program writes is in memory first. A power cut within the next half minute leaves files
// of no bytes under names that a report calls done.

/// Waits until everything that was written to the file system of the folder is on its disk: one
/// wait, however many files there are, where waiting for each costs ten times as long.
/// Throws pdf::Error(OutputUnwritable) when something could not be written.
void syncFileSystemOf(const QString &folder);

/// Waits until the names in the folder are on the disk. Throws pdf::Error(OutputUnwritable).
void syncFolder(const QString &folder);
