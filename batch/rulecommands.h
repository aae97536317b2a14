// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"

/// --list-rules: the names, one a line, or with --json one object a line with position, size, text.
void listRules(const BatchOptions &options);

/// --fragments: the texts of the page in reading order with their boxes in page pixels.
/// Throws pdf::Error.
void showFragments(const BatchOptions &options);

/// --save-rule: stores the rule as the window would. With --fragments it is the fragment at the
/// position, else the position alone. Throws pdf::Error: Usage for a name that is empty or taken
/// and when there is no such fragment, OutputUnwritable.
void saveNewRule(const BatchOptions &options);
