// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/isolation/limits.h"

#include <functional>
#include <string>

namespace pdf {

/// Why a process that was ended by the signal ended, as a cause for an Error.
[[nodiscard]] std::string causeOfEnd(int signal);

/// Ends this process, not those that it forks, by a signal that causeOfEnd() knows: after so much
/// processor time, or as soon as a mapped input turns out to have become shorter than it was.
void limitProcessorTime(int seconds);

/// Goes on in a child process, so that a file which crashes the reader, or keeps it busy for
/// longer than the seconds of processor time, ends the child alone.
///
/// Returns in the child only. The process that called waits and ends when the child does: with the
/// child's exit code or, when a signal ended the child, with InputUnreadable after failed(cause),
/// which is called when no process started by the child is left. When the waiting process is
/// killed the child is, too. Throws Error when no process can be started.
void continueInChild(const std::function<void(const std::string &cause)> &failed,
                     int processorSeconds = documentTimeLimitSeconds);

} // namespace pdf
