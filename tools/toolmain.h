// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/error.h"

#include <functional>
#include <string>
#include <vector>

/// What the two command-line tools have in common around their work.
struct Tool
{
    std::string name;
    std::string usage; ///< printed by -help, exit codes included
    /// Does the work for the arguments (bytes, without the program name); throws pdf::Error.
    std::function<pdf::ExitCode(const std::vector<std::string> &arguments)> run;
};

/// Answers -help and -version, runs the tool, prints one line on standard error for a failure and
/// returns the exit code.
[[nodiscard]] int toolMain(const Tool &tool, int argc, char *argv[]);

/// Prints "name: cause" as one line on standard error.
void printFailure(const std::string &toolName, const std::string &cause);

/// The part of the usage text about exit codes.
[[nodiscard]] std::string exitCodeUsage();
