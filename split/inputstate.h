// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// What changes when a file is replaced or written to. Page ranges found in one state of an input
/// mean other pages in the next one.
///
/// The window records the state of an input before its pages are read, in its private temporary
/// folder; stavekit, which has that folder as TMPDIR, takes pages only from the same state.
/// Neither Qt nor a PDF library is needed for that. Paths are bytes, as the system takes them.
struct InputState
{
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t sizeBytes = 0;
    std::int64_t modifiedNs = 0; ///< since 1970
    std::int64_t changedNs = 0;  ///< since 1970; by the system's clock, also where a program set
                                 ///< the time of modification back

    [[nodiscard]] bool operator==(const InputState &other) const;
    [[nodiscard]] bool operator!=(const InputState &other) const { return !(*this == other); }
};

/// The state of the regular file to which the path leads, also through links; nothing when there is
/// none.
[[nodiscard]] std::optional<InputState> inputState(const std::string &path);
/// That of the regular file that is open under the descriptor.
[[nodiscard]] std::optional<InputState> inputState(int descriptor);

/// The state of the file at the path, once it is one that every later write changes: a file that
/// was written to a moment ago is waited for (some milliseconds), because the next write could
/// still bear the same time.
[[nodiscard]] std::optional<InputState> settledInputState(const std::string &path);

/// Records the state of the input at the path, in place of what was recorded in the folder before.
/// The state is a settled one. Returns whether that worked; if not, nothing is recorded.
/// The folder must be private: this user's, and not writable for others.
[[nodiscard]] bool recordInputState(const std::string &folder, const std::string &path);

/// What is recorded in the folder, if it is for this very path and nobody else can have written it;
/// otherwise nothing.
[[nodiscard]] std::optional<InputState> recordedInputState(const std::string &folder,
                                                           const std::string &path);
