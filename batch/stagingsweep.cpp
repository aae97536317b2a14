// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/stagingsweep.h"

#include "system/moving.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <sys/stat.h>

namespace {

/// As far as it goes into a name that file systems with short names take, too.
std::string hostName()
{
    constexpr std::size_t length = 20;
    std::array<char, 256> buffer = {};
    ::gethostname(buffer.data(), buffer.size() - 1);
    std::string name = std::string(buffer.data()).substr(0, length);
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}

/// Unlike the name, no two systems share it, not even machines made from the same image.
std::string numberOfStart()
{
    constexpr std::size_t length = 13;
    std::string number;
    std::ifstream("/proc/sys/kernel/random/boot_id") >> number;
    return number.substr(0, length);
}

/// Whether nothing in the folder has changed for a day.
bool isOld(const FolderDescriptor &folder, std::time_t now)
{
    constexpr std::time_t day = 86400;
    struct stat status = {};
    if (::fstat(folder.get(), &status) != 0)
        return false;
    std::time_t changed = status.st_mtime;
    if (::fstatat(folder.get(), newDocuments, &status, AT_SYMLINK_NOFOLLOW) == 0)
        changed = std::max(changed, status.st_mtime);
    return changed + day < now;
}

void putBack(const FolderDescriptor &staging, const std::string &parent)
{
    const FolderDescriptor old(staging.get(), oldDocuments);
    if (!old.isOpen())
        return;
    const FolderDescriptor folder(AT_FDCWD, (parent + "/.").c_str());
    for (const std::string &name : namesIn(old))
        static_cast<void>(moveUnlessTaken({old.get(), name}, {folder.get(), name}));
}

} // namespace

std::string stagingNamePrefix()
{
    const std::string number = numberOfStart();
    return stagingKind.namePrefix + hostName() + '-' + (number.empty() ? "unknown" : number) + '-';
}

void removeAbandonedStaging(const std::string &parent, std::optional<std::time_t> now)
{
    const std::string number = numberOfStart();
    const auto isAbandoned = [&](const FolderDescriptor &folder, const std::string &name,
                                 bool isLockFree) {
        const bool isOfThisSystem =
            !number.empty() && name.find('-' + number + '-') != std::string::npos;
        if (!(isOfThisSystem && isLockFree) && !(now && isOld(folder, *now)))
            return false;
        putBack(folder, parent);
        return true;
    };
    removeAbandonedFolders(parent, stagingKind, isAbandoned);
}
