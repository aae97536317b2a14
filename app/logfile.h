// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The user's data folder for this program. It is asked for anew each time, so it follows the
/// environment.
[[nodiscard]] QString dataFolder();

/// The log, in the data folder, readable for its owner only: it names the user's files. It holds
/// the messages of the latest run.
[[nodiscard]] QString logFile();
