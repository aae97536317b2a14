// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>

/// How far one input is, in memory that its processes share with the one that shows it.
struct FileProgress
{
    std::atomic<int> pageCount{0};
    std::atomic<int> pagesDone{0};
    std::atomic<bool> lacksProcess{false}; ///< it failed for want of processes, not by itself
};
