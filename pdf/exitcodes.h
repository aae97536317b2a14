// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace pdf {

/// Exit codes of quillrend and stavekit. Scripts rely on them: a number is never given a new
/// meaning. 1, 99, 126 and 127 stay unused because schedulers and shells give them meanings of
/// their own.
enum class ExitCode {
    Done = 0,             ///< everything asked for was written
    Usage = 2,            ///< command line not understood, or a page that does not exist asked for
    InputUnreadable = 3,  ///< input missing, no PDF, or damaged beyond repair
    DoneInPart = 4,       ///< some pages had to be given up, the others are written
    OutputUnwritable = 5, ///< output cannot be created or written
    Forbidden = 6,        ///< input needs a password, or its permissions forbid the operation
};

} // namespace pdf
