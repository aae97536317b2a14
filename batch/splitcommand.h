// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"
#include "pdf/exitcodes.h"

/// Splits the inputs and reports on them. What is wrong with the call itself is found before the
/// work starts: throws pdf::Error(Usage) and pdf::Error(OutputUnwritable). When a signal ended the
/// run, this process ends by the same signal.
[[nodiscard]] pdf::ExitCode splitInputs(const BatchOptions &options);

/// The exit code of a run from those of its inputs, Done among them.
class ExitSummary
{
public:
    void add(pdf::ExitCode code);
    [[nodiscard]] pdf::ExitCode exitCode() const;

private:
    int good = 0;
    int inPart = 0;
    int unwritable = 0;
    int forbidden = 0;
    int unreadable = 0;
};
