// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace pdf {

/// Removes from the folder what an OutputFile left there whose process was killed, where the file
/// system knows no nameless files: this user's regular files of such names that no process holds
/// locked any more. For a process that may still list folders.
void removeAbandonedOutputs(const std::string &folder);

} // namespace pdf
