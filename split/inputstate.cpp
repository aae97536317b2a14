// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/inputstate.h"

#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <sstream>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace {

constexpr char recordName[] = "/sendrivo-input-state";
constexpr char newRecordName[] = "/sendrivo-input-state.new";

struct Closer
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

File openFile(const std::string &path, int flags, const char *mode)
{
    constexpr mode_t forOwner = 0600;
    const int descriptor =
        ::open(path.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, forOwner);
    File file(descriptor < 0 ? nullptr : ::fdopen(descriptor, mode));
    if (file == nullptr && descriptor >= 0)
        ::close(descriptor);
    return file;
}

std::int64_t nanoseconds(const timespec &time)
{
    constexpr std::int64_t perSecond = 1'000'000'000;
    return time.tv_sec * perSecond + time.tv_nsec;
}

std::optional<InputState> stateFrom(const struct stat &status)
{
    if (!S_ISREG(status.st_mode))
        return std::nullopt;
    return InputState{status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
                      nanoseconds(status.st_ctim)};
}

/// Whether nobody but this user can have made or written it.
bool isPrivate(const struct stat &status)
{
    return status.st_uid == ::geteuid() && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool isPrivateFolder(const std::string &path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && isPrivate(status);
}

/// A line of numbers and then the path to the end: whatever bytes the path has, nothing of it can
/// be taken for something else.
std::string recordText(const InputState &state, const std::string &path)
{
    std::ostringstream text;
    text << state.device << ' ' << state.inode << ' ' << state.sizeBytes << ' ' << state.modifiedNs
         << ' ' << state.changedNs << '\n'
         << path;
    return text.str();
}

bool writeRecord(const std::string &recordPath, const std::string &text)
{
    File file = openFile(recordPath, O_WRONLY | O_CREAT | O_EXCL, "w");
    if (file == nullptr)
        return false;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    // A full disk is often reported only here.
    return std::fclose(file.release()) == 0 && isWritten;
}

/// All of a private regular file, nothing of any other.
std::string readRecord(const std::string &recordPath)
{
    const File file = openFile(recordPath, O_RDONLY, "r");
    struct stat status = {};
    if (file == nullptr || ::fstat(::fileno(file.get()), &status) != 0 ||
        !S_ISREG(status.st_mode) || !isPrivate(status))
        return {};
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    return text;
}

} // namespace

bool InputState::operator==(const InputState &other) const
{
    const auto all = [](const InputState &state) {
        return std::tie(state.device, state.inode, state.sizeBytes, state.modifiedNs,
                        state.changedNs);
    };
    return all(*this) == all(other);
}

std::optional<InputState> inputState(const std::string &path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? stateFrom(status) : std::nullopt;
}

std::optional<InputState> inputState(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 ? stateFrom(status) : std::nullopt;
}

// The kernel stamps files with a clock that moves on every few milliseconds.
std::optional<InputState> settledInputState(const std::string &path)
{
    constexpr int tries = 20; // a clock that was set back must not keep the caller for ever
    constexpr timespec pause = {0, 1'000'000};
    std::optional<InputState> state;
    for (int i = 0; i < tries; ++i) {
        timespec now = {};
        ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
        state = inputState(path);
        if (!state || state->changedNs < nanoseconds(now))
            break;
        ::nanosleep(&pause, nullptr);
    }
    return state;
}

bool recordInputState(const std::string &folder, const std::string &path)
{
    const std::string newRecord = folder + newRecordName;
    // First, so that the record of an earlier state cannot outlive a failure.
    ::unlink((folder + recordName).c_str());
    ::unlink(newRecord.c_str());
    if (!isPrivateFolder(folder))
        return false;
    const std::optional<InputState> state = settledInputState(path);
    if (state && writeRecord(newRecord, recordText(*state, path)) &&
        std::rename(newRecord.c_str(), (folder + recordName).c_str()) == 0)
        return true;
    ::unlink(newRecord.c_str());
    return false;
}

std::optional<InputState> recordedInputState(const std::string &folder, const std::string &path)
{
    if (!isPrivateFolder(folder))
        return std::nullopt;
    const std::string text = readRecord(folder + recordName);
    InputState state;
    std::istringstream numbers(text);
    numbers >> state.device >> state.inode >> state.sizeBytes >> state.modifiedNs >>
        state.changedNs;
    if (!numbers || text != recordText(state, path))
        return std::nullopt;
    return state;
}
