// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/outputfile.h"

#include "pdf/error.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace pdf {

namespace {

std::string processLink(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}

/// A name for the file in folder that nothing has yet, without creating it.
std::string unusedName(const std::string &folder)
{
    static unsigned counter = 0;
    return folder + "/.sendrivo-" + std::to_string(::getpid()) + "-" + std::to_string(++counter);
}

} // namespace

OutputFile::OutputFile(const std::string &path) : target(path)
{
    const std::string folder = folderOf(path);
    // Naming a nameless file later goes through /proc, which a container may lack.
    if (::access("/proc/self/fd", X_OK) == 0)
        fd = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    if (fd < 0)
        openNamed(folder);
}

void OutputFile::openNamed(const std::string &folder)
{
    std::string name = folder + "/.sendrivo-XXXXXX";
    fd = ::mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0)
        fail();
    temporaryName = std::move(name);
    // mkostemp gives a file to its owner only; an output gets what the umask allows, as others do.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask);
}

OutputFile::~OutputFile()
{
    if (fd >= 0)
        ::close(fd);
    if (!temporaryName.empty())
        ::unlink(temporaryName.c_str());
}

void OutputFile::fail() const
{
    throw Error(ExitCode::OutputUnwritable, target + ": " + std::strerror(errno));
}

void OutputFile::write(std::string_view bytes)
{
    constexpr std::size_t bufferSize = std::size_t{1} << 16;
    pending += bytes;
    if (pending.size() >= bufferSize)
        flush();
}

void OutputFile::flush()
{
    std::string_view bytes = pending;
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            fail();
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    pending.clear();
}

void OutputFile::publish()
{
    flush();
    if (temporaryName.empty()) {
        const std::string link = processLink(fd);
        if (::linkat(AT_FDCWD, link.c_str(), AT_FDCWD, target.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            if (errno != EEXIST)
                fail();
            std::string name = unusedName(folderOf(target));
            if (::linkat(AT_FDCWD, link.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0)
                fail();
            temporaryName = std::move(name);
        }
    }
    // Network file systems report a full disk only here.
    const int descriptor = std::exchange(fd, -1);
    if (::close(descriptor) != 0) {
        const int cause = errno;
        if (temporaryName.empty())
            ::unlink(target.c_str());
        errno = cause;
        fail();
    }
    if (!temporaryName.empty()) {
        if (std::rename(temporaryName.c_str(), target.c_str()) != 0)
            fail();
        temporaryName.clear();
    }
}

std::string folderOf(const std::string &path)
{
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

void removeStaleOutput(const std::string &path)
{
    if (::unlink(path.c_str()) != 0 && errno != ENOENT)
        throw Error(ExitCode::OutputUnwritable, path + ": " + std::strerror(errno));
}

void writeOutputFile(const std::string &path, std::string_view bytes)
{
    OutputFile file(path);
    file.write(bytes);
    file.publish();
}

} // namespace pdf
