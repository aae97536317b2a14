// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <fcntl.h>
#include <unistd.h>
#include <utility>

/// An open folder, closed with the object and in programs that this one starts. Not open when
/// `name` is a link or no folder.
class FolderDescriptor
{
public:
    FolderDescriptor() = default;
    /// `name` is relative to the open folder `parent`, or to the working folder with AT_FDCWD.
    FolderDescriptor(int parent, const char *name)
        : number(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC))
    {
    }
    FolderDescriptor(FolderDescriptor &&other) noexcept : number(std::exchange(other.number, -1)) {}
    FolderDescriptor &operator=(FolderDescriptor &&other) noexcept
    {
        std::swap(number, other.number);
        return *this;
    }
    ~FolderDescriptor()
    {
        if (isOpen())
            ::close(number);
    }
    FolderDescriptor(const FolderDescriptor &) = delete;
    FolderDescriptor &operator=(const FolderDescriptor &) = delete;

    [[nodiscard]] bool isOpen() const { return number >= 0; }
    [[nodiscard]] int get() const { return number; }

private:
    int number = -1;
};
