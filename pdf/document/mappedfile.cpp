// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/mappedfile.h"

#include "pdf/error.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pdf {

MappedFile::Descriptor::~Descriptor()
{
    if (fd >= 0)
        ::close(fd);
}

// Without O_NONBLOCK, opening a named pipe would wait for a writer for ever.
MappedFile::MappedFile(const std::string &path)
    : name(path), file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    const auto refuse = [&path](const char *cause) {
        throw Error(ExitCode::InputUnreadable, path + ": " + cause);
    };
    struct stat status = {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0)
        refuse(std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        refuse("is a folder");
    if (!S_ISREG(status.st_mode))
        refuse("is not a regular file");
    if (status.st_size == 0)
        refuse("is empty");
    size = static_cast<std::size_t>(status.st_size);
    void *mapping = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (mapping == MAP_FAILED)
        refuse(std::strerror(errno));
    data = static_cast<const char *>(mapping);
}

MappedFile::~MappedFile()
{
    ::munmap(const_cast<char *>(data), size);
}

std::optional<FileIdentity> fileIdentity(const std::string &path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return FileIdentity(status.st_dev, status.st_ino);
}

bool isSameFile(const std::string &path, const std::string &otherPath)
{
    const std::optional<FileIdentity> identity = fileIdentity(path);
    return identity && identity == fileIdentity(otherPath);
}

} // namespace pdf
