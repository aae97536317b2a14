// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/isolation/sandbox.h"

#include "pdf/isolation/callfilter.h"

#include <cstdint>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pdf {

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool hasSanitizers = true;
#else
constexpr bool hasSanitizers = false;
#endif

// Landlock's interface as the kernel documents it (Documentation/userspace-api/landlock.rst). It is
// stated here because headers are often older than the kernel that runs.
constexpr unsigned askForVersion = 1;
constexpr int ruleForPath = 1;

struct RulesetAttributes
{
    std::uint64_t files;   ///< rights that are closed unless a rule opens them
    std::uint64_t network; ///< left to the call filter
    std::uint64_t scopes;
};

struct __attribute__((packed)) PathRule
{
    std::uint64_t rights;
    std::int32_t path;
};

enum Right : std::uint64_t {
    WriteFile = 1 << 1,
    ReadFile = 1 << 2,
    ReadFolder = 1 << 3,
    RemoveFile = 1 << 5,
    MakeFile = 1 << 8,
    Truncate = 1 << 14,
};
constexpr std::uint64_t scopeSignals = 1 << 1;

/// All rights on files that a version of Landlock knows.
std::uint64_t knownRights(long version)
{
    constexpr int bitsOfVersion[] = {0, 13, 14, 15, 15, 16};
    constexpr long newest = 5;
    return (std::uint64_t{1} << bitsOfVersion[version < newest ? version : newest]) - 1;
}

class Ruleset
{
public:
    Ruleset()
    {
        const long version =
            ::syscall(callLandlockCreateRuleset, nullptr, std::size_t{0}, askForVersion);
        if (version < 1)
            return;
        constexpr long firstWithNetwork = 4;
        constexpr long firstWithScopes = 6;
        known = knownRights(version);
        const RulesetAttributes attributes = {known, 0,
                                              version < firstWithScopes ? 0 : scopeSignals};
        // A version takes no more of the structure than it knows.
        std::size_t size = sizeof attributes;
        if (version < firstWithScopes)
            size -= sizeof attributes.scopes;
        if (version < firstWithNetwork)
            size -= sizeof attributes.network;
        ruleset = static_cast<int>(::syscall(callLandlockCreateRuleset, &attributes, size, 0U));
    }
    ~Ruleset()
    {
        if (ruleset >= 0)
            ::close(ruleset);
    }
    Ruleset(const Ruleset &) = delete;
    Ruleset &operator=(const Ruleset &) = delete;

    /// A path that does not exist needs no rule.
    void allow(const std::string &path, std::uint64_t rights) const
    {
        if (ruleset < 0)
            return;
        const PathRule rule = {rights & known, ::open(path.c_str(), O_PATH | O_CLOEXEC)};
        if (rule.path < 0)
            return;
        ::syscall(callLandlockAddRule, ruleset, ruleForPath, &rule, 0U);
        ::close(rule.path);
    }

    [[nodiscard]] bool enforce() const
    {
        return ruleset >= 0 && ::syscall(callLandlockRestrictSelf, ruleset, 0U) == 0;
    }

private:
    std::uint64_t known = 0;
    int ruleset = -1;
};

bool isFolder(const std::string &path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

Confinement confine(const Permissions &permissions)
{
    Confinement result;
    // Both need the promise that no program started from here gains rights.
    if (hasSanitizers || ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return result;
    const Ruleset ruleset;
    for (const std::string &file : permissions.readableFiles)
        // A folder given for a file is to be told from one that may not be read.
        ruleset.allow(file, isFolder(file) ? ReadFolder : ReadFile);
    // Some builds of qpdf take what they need for encryption from here.
    if (!permissions.writableFolders.empty())
        ruleset.allow("/dev/urandom", ReadFile);
    for (const std::string &folder : permissions.writableFolders)
        ruleset.allow(folder, ReadFile | WriteFile | RemoveFile | MakeFile | Truncate);
    result.limitsPaths = ruleset.enforce();
    result.limitsCalls = filterCalls(permissions);
    return result;
}

} // namespace pdf
