// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/exitcodes.h"

#include <stdexcept>
#include <string>

namespace pdf {

/// The one exception type of this library: a cause in one line of UTF-8 (without program name or
/// line feed) and the exit code that a tool ends with because of it. File names inside the text
/// are the bytes the caller gave.
class Error : public std::runtime_error
{
public:
    Error(ExitCode exitCode, const std::string &cause) : std::runtime_error(cause), code(exitCode)
    {
    }
    [[nodiscard]] ExitCode exitCode() const { return code; }

private:
    ExitCode code;
};

} // namespace pdf
