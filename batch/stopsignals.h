// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <csignal>

/// Turns the signals that end a program into something to be polled, as long as it lives. There is
/// one at a time.
class StopSignals
{
public:
    /// Throws std::runtime_error when there is no descriptor left.
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals &) = delete;
    StopSignals &operator=(const StopSignals &) = delete;

    /// Readable once a signal has come.
    [[nodiscard]] int descriptor() const;
    /// The first signal that came, 0 when none has. Empties the descriptor.
    int take();
    /// In a fork: leaves the signals to the first process, which ends the fork with `forInputs`.
    /// Terminals and job schedulers signal all processes at once, and an input's process that ended
    /// before the first one knew why would be taken for one that crashed.
    static void handOver();
    static constexpr int forInputs = SIGUSR1;

    static constexpr std::array<int, 3> numbers = {SIGHUP, SIGINT, SIGTERM};
};
