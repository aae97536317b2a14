// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

/// A file to be, or that is: a name in the open folder, or a path with AT_FDCWD.
struct Place
{
    int folder;
    std::string name;
};

/// Renames a file unless something has the new name, which makes it fail with EEXIST. errno tells
/// the cause.
[[nodiscard]] bool moveUnlessTaken(const Place &from, const Place &to);
