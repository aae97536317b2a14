// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

namespace pdf {

/// What a process that reads strangers' files may still touch, apart from its memory and the files
/// it has open. What is not stated is closed.
struct Permissions
{
    std::vector<std::string> readableFiles;   ///< files it may open for reading
    std::vector<std::string> writableFolders; ///< where it may make, read, replace, remove files
    bool mayStartWorkers = false;             ///< fork, confine its forks further and end them
};

/// What confine() could achieve on this machine.
struct Confinement
{
    bool limitsPaths = false; ///< Landlock: files can be opened only where Permissions say so
    bool limitsCalls = false; ///< seccomp: no system call but those that reading and writing need
};

/// Takes everything else from this process and its future children for good: no network, no other
/// program, no signal to or look into other processes, no other files. What the kernel (or a
/// container's rules) does not offer is left out; without Landlock a process that may open files
/// may open what its user may. A forbidden call fails with EPERM, a forbidden path with EACCES.
///
/// Does nothing in a build with sanitizers, whose reports read /proc and start other programs.
Confinement confine(const Permissions &permissions);

} // namespace pdf
