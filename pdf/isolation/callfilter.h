// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/isolation/sandbox.h"

namespace pdf {

// Landlock's calls, one number on all architectures. Headers older than the kernel do not name
// them.
constexpr int callLandlockCreateRuleset = 444;
constexpr int callLandlockAddRule = 445;
constexpr int callLandlockRestrictSelf = 446;

/// The half of confine() that deals with system calls: lets this process and its future children
/// make only those calls that the permissions need. Paths are not its concern. Returns whether the
/// kernel took the filter; it must be told before that no program gains rights
/// (PR_SET_NO_NEW_PRIVS).
bool filterCalls(const Permissions &permissions);

} // namespace pdf
