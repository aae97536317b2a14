// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace pdf {

/// A whole input file mapped read-only, so that a tool that needs five pages of a large file reads
/// only what it touches. The mapping stays valid when the file is renamed or removed meanwhile;
/// a file that gets shorter while it is read ends the process with SIGBUS, which the process that
/// waits for it reports (pdf/isolation/supervision.h).
class MappedFile
{
public:
    /// Maps the file at path (bytes, as the system gives them).
    /// Throws Error(InputUnreadable) for what is missing, unreadable, empty or no regular file.
    explicit MappedFile(const std::string &path);
    ~MappedFile();
    MappedFile(const MappedFile &) = delete;
    MappedFile &operator=(const MappedFile &) = delete;

    [[nodiscard]] std::string_view bytes() const { return {data, size}; }
    [[nodiscard]] const std::string &path() const { return name; }
    /// The open file, whatever its path leads to meanwhile.
    [[nodiscard]] int descriptor() const { return file.get(); }

private:
    class Descriptor
    {
    public:
        explicit Descriptor(int number) : fd(number) {}
        ~Descriptor();
        Descriptor(const Descriptor &) = delete;
        Descriptor &operator=(const Descriptor &) = delete;
        [[nodiscard]] int get() const { return fd; }

    private:
        int fd;
    };

    std::string name;
    Descriptor file;
    const char *data = nullptr;
    std::size_t size = 0;
};

/// What tells a file from all others, whatever its paths: device and number.
using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;
/// That of the file to which the path leads, also through links; nothing when there is none.
[[nodiscard]] std::optional<FileIdentity> fileIdentity(const std::string &path);
/// Whether both paths lead to the same existing file, also through links.
[[nodiscard]] bool isSameFile(const std::string &path, const std::string &otherPath);

} // namespace pdf
