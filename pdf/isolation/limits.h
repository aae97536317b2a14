// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace pdf {

/// Largest amount of memory a tool's process may ask for, in bytes (files are mapped and do not
/// count).
constexpr long long memoryLimitBytes = 1LL << 30;

/// Longest time one page may take before it is given up.
constexpr int pageTimeLimitSeconds = 20;

/// Longest processor time that reading or assembling one document may take.
constexpr int documentTimeLimitSeconds = 60;

/// Makes further allocations beyond memoryLimitBytes fail, in this process and its children, and
/// keeps a crash from leaving a core file in the user's folder and an exception that nothing can
/// catch from leaving the runtime's words on standard error. Writing beyond a file size limit
/// becomes an ordinary error.
void limitResources();

} // namespace pdf
