// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/error.h"
#include "pdf/isolation/limits.h"

#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

namespace pdf {

/// Why a process that was ended by the signal ended, as a cause for an Error.
[[nodiscard]] std::string causeOfEnd(int signal);

/// Kills this process when the thread of its parent that started it ends. Ends it at once when that
/// has happened, that is, when `parent` is no longer its parent.
void endWithParent(pid_t parent);

/// fork(), but the child is killed when this process ends, and endOf() tells how it ended.
[[nodiscard]] pid_t forkBound();

/// The system has no process left for this work, or no descriptor to talk with it.
class NoProcess : public Error
{
public:
    /// `error` is the errno of what failed.
    explicit NoProcess(int error);
};

/// How the child ended, as waitpid() gives it; nothing while it goes on, which only a call with
/// WNOHANG among the options does not wait for. A child that nothing is known of counts as killed.
[[nodiscard]] std::optional<int> endOf(pid_t process, int options = 0);

/// Ends this process, not those that it forks, by a signal that causeOfEnd() knows: after so much
/// processor time, or as soon as a mapped input turns out to have become shorter than it was.
void limitProcessorTime(int seconds);

/// Goes on in a child process, so that a file which crashes the reader, or keeps it busy for
/// longer than the seconds of processor time, ends the child alone.
///
/// Returns in the child only. The process that called waits and ends when the child does: with the
/// child's exit code or, when a signal ended the child, with InputUnreadable after failed(cause),
/// which is called when no process started by the child is left. When the waiting process is
/// killed the child is, too. Throws NoProcess.
void continueInChild(const std::function<void(const std::string &cause)> &failed,
                     int processorSeconds = documentTimeLimitSeconds);

} // namespace pdf
