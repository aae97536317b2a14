// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

// Stands between a program and the C library (LD_PRELOAD): writes the order of the calls that
// decide what outlives a power cut or a kill to the file that SENDRIVO_TEST_CALLS names, and can
// make the system one without nameless files (SENDRIVO_TEST_NAMED) or end the program before it
// renames a file (SENDRIVO_TEST_END).

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

/// Open before the program is confined.
const int record = [] {
    const char *path = std::getenv("SENDRIVO_TEST_CALLS");
    return path == nullptr ? -1 : ::open(path, O_WRONLY | O_APPEND | O_CREAT, 0600);
}();

std::string fileOf(int descriptor)
{
    char path[PATH_MAX] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    return ::readlink(link.c_str(), path, sizeof path - 1) < 0 ? "?" : path;
}

void note(const char *call, const std::string &file)
{
    const std::string line = std::string(call) + ' ' + file + '\n';
    if (record >= 0)
        next<ssize_t(int, const void *, size_t)>("write")(record, line.data(), line.size());
}

} // namespace

extern "C" {

int syncfs(int descriptor) noexcept
{
    note("syncfs", fileOf(descriptor));
    return next<int(int)>("syncfs")(descriptor);
}

int fsync(int descriptor)
{
    note("fsync", fileOf(descriptor));
    return next<int(int)>("fsync")(descriptor);
}

int fdatasync(int descriptor)
{
    note("fdatasync", fileOf(descriptor));
    return next<int(int)>("fdatasync")(descriptor);
}

int rename(const char *from, const char *to) noexcept
{
    note("rename", to);
    if (std::getenv("SENDRIVO_TEST_END") != nullptr)
        ::_exit(1);
    return next<int(const char *, const char *)>("rename")(from, to);
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to,
              unsigned flags) noexcept
{
    note("rename", to);
    return next<int(int, const char *, int, const char *, unsigned)>("renameat2")(
        fromFolder, from, toFolder, to, flags);
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    note("linkat", to);
    return next<int(int, const char *, int, const char *, int)>("linkat")(fromFolder, from,
                                                                          toFolder, to, flags);
}

ssize_t write(int descriptor, const void *bytes, size_t size)
{
    if (size > 1 && *static_cast<const char *>(bytes) == '{')
        note("write", fileOf(descriptor));
    return next<ssize_t(int, const void *, size_t)>("write")(descriptor, bytes, size);
}

int open(const char *path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const int mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, int) : 0;
    va_end(arguments);
    if ((flags & O_TMPFILE) == O_TMPFILE && std::getenv("SENDRIVO_TEST_NAMED") != nullptr) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return next<int(const char *, int, ...)>("open")(path, flags, mode);
}
}
