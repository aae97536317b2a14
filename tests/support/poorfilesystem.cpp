// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Loaded into a program before its other libraries (LD_PRELOAD), lets it see a poorer file system
// than there is: without hard links and without a renaming that never replaces. In the environment
//   POOR_NAME_MAX   the longest file name
//   POOR_KILL       if not empty, the process group is killed before new/2.pdf replaces a file

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string_view>
#include <unistd.h>

namespace {

template <typename Function>
Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int linkat(int from, const char *old, int to, const char *name, int flags) noexcept
{
    // Files without a name get one this way, on every file system that knows them.
    if (std::strncmp(old, "/proc/", 6) == 0)
        return next<decltype(&linkat)>("linkat")(from, old, to, name, flags);
    errno = EPERM;
    return -1;
}

int renameat2(int, const char *, int, const char *, unsigned) noexcept
{
    errno = EINVAL;
    return -1;
}

int rename(const char *old, const char *name) noexcept
{
    const std::string_view path = old;
    const std::string_view end = "/new/2.pdf";
    const char *isWanted = std::getenv("POOR_KILL");
    if (isWanted && *isWanted != '\0' && path.size() > end.size() &&
        path.substr(path.size() - end.size()) == end)
        ::kill(0, SIGKILL);
    return next<decltype(&rename)>("rename")(old, name);
}

long pathconf(const char *path, int name) noexcept
{
    const char *longest = std::getenv("POOR_NAME_MAX");
    if (longest && name == _PC_NAME_MAX)
        return std::strtol(longest, nullptr, 10);
    return next<decltype(&pathconf)>("pathconf")(path, name);
}
}
