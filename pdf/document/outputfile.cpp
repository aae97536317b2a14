// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/outputfile.h"

#include "pdf/error.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace pdf {

namespace {

std::string processLink(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}

constexpr std::string_view temporaryPrefix = ".sendrivo-";
constexpr std::string_view randomPart = "XXXXXX";

/// A name for the file in folder that nothing has yet, without creating it.
std::string unusedName(const std::string &folder)
{
    static unsigned counter = 0;
    return folder + '/' + std::string(temporaryPrefix) + std::to_string(::getpid()) + "-" +
           std::to_string(++counter);
}

/// A file that is open, and with it its lock, until the end of the block.
class Descriptor
{
public:
    explicit Descriptor(int openFile) : file(openFile) {}
    ~Descriptor()
    {
        if (file >= 0)
            ::close(file);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

private:
    int file;
};

} // namespace

int openNameless(const std::string &folder)
{
    // Naming a nameless file later goes through /proc, which a container may lack.
    if (::access("/proc/self/fd", X_OK) != 0)
        return -1;
    return ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
}

bool isTemporaryName(std::string_view name)
{
    if (name.substr(0, temporaryPrefix.size()) != temporaryPrefix)
        return false;
    name.remove_prefix(temporaryPrefix.size());
    const bool isRandom = name.size() == randomPart.size() && name.find('-') == name.npos;
    return isRandom ||
           (name.find('-') != name.npos && name.find_first_not_of("0123456789-") == name.npos);
}

OutputFile::OutputFile(const std::string &path) : target(path)
{
    const std::string folder = folderOf(path);
    fd = openNameless(folder);
    if (fd < 0)
        openNamed(folder);
}

/// False when the file was taken for an abandoned one before it was locked.
bool OutputFile::tryNamed(const std::string &folder)
{
    std::string name = folder + '/' + std::string(temporaryPrefix) + std::string(randomPart);
    fd = ::mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0)
        fail();
    // A file system without locks leaves it unlocked, and nobody takes it for abandoned.
    const bool isTaken = ::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    struct stat status = {};
    if (!isTaken && ::fstat(fd, &status) == 0 && status.st_nlink > 0) {
        temporaryName = std::move(name);
        return true;
    }
    ::close(std::exchange(fd, -1));
    return false;
}

void OutputFile::openNamed(const std::string &folder)
{
    while (!tryNamed(folder)) {
    }
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
            ::flock(fd, LOCK_EX | LOCK_NB);
            if (::linkat(AT_FDCWD, link.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0)
                fail();
            temporaryName = std::move(name);
        }
    }
    // Closing gives the lock up, unless there is another descriptor of the file.
    const Descriptor held(temporaryName.empty() ? -1 : ::fcntl(fd, F_DUPFD_CLOEXEC, 0));
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
