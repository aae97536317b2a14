// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/scheduler.h"

#include "batch/fileprocess.h"
#include "batch/stopsignals.h"
#include "pdf/isolation/sharedmemory.h"
#include "pdf/isolation/supervision.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <poll.h>
#include <sched.h>
#include <stdexcept>
#include <sys/resource.h>

namespace {

constexpr int maximalJobs = 256;

/// Jobs that there are descriptors for: one each, which all processes inherit, and what a process
/// needs for its own work.
int possibleJobs()
{
    constexpr int descriptorsForWork = 24;
    rlimit descriptors = {};
    if (::getrlimit(RLIMIT_NOFILE, &descriptors) != 0 ||
        descriptors.rlim_cur >= maximalJobs + descriptorsForWork)
        return maximalJobs;
    return std::max(1, static_cast<int>(descriptors.rlim_cur) - descriptorsForWork);
}

struct ProgressBoard
{
    std::array<FileProgress, maximalJobs> files;
};

class Run
{
public:
    Run(const SplitPlan &splitPlan, std::vector<InputGroup> &inputGroups, int wantedJobs,
        const RunListener &runListener)
        : plan(splitPlan), groups(inputGroups), jobs(std::clamp(wantedJobs, 1, possibleJobs())),
          possible(jobs), listener(runListener), running(static_cast<std::size_t>(jobs))
    {
        for (const InputGroup &group : groups) {
            state.files += static_cast<int>(group.inputs.size());
            inputsDone.push_back(0);
            groupBytes.push_back(bytesOf(group));
            totalBytes += groupBytes.back();
        }
        // The largest first, so that at the end no processor waits for one large file alone.
        for (std::size_t i = 0; i < groups.size(); ++i)
            waiting.push_back(i);
        std::stable_sort(waiting.begin(), waiting.end(), [this](std::size_t a, std::size_t b) {
            return groupBytes[a] < groupBytes[b];
        });
    }

    int run()
    {
        while (goOn()) {
        }
        if (failure)
            std::rethrow_exception(failure);
        return stoppedBy;
    }

private:
    /// What one of the jobs is at.
    struct Place
    {
        std::unique_ptr<FileProcess> process; ///< null while the place is free
        std::size_t group = 0;
        bool isReadable = false;
    };

    /// Does what there is to do now. Returns whether anything is left.
    bool goOn()
    {
        try {
            if (!startWaiting())
                return false;
            if (!waitForSomething())
                return false;
            for (Place &place : running) {
                if (place.isReadable && place.process->receive())
                    finish(place);
            }
            if (const int number = stopSignals.take())
                stop(number);
            listener.tick(currentState());
        } catch (...) {
            // A full disk or a closed standard output is no reason to kill an input that is
            // publishing its documents: it ends the run as a signal does.
            if (!isStopping)
                failure = std::current_exception();
            stop(0);
        }
        return true;
    }

    static long long bytesOf(const InputGroup &group)
    {
        long long bytes = 0;
        for (const QString &input : group.inputs)
            bytes += QFileInfo(input).size();
        return bytes;
    }

    /// Fills the free places. Returns whether anything is running.
    bool startWaiting()
    {
        for (Place &place : running) {
            if (waiting.empty() || isStopping || countRunning() >= possible)
                break;
            if (place.process)
                continue;
            place.group = waiting.back();
            if (!start(place))
                break;
            waiting.pop_back();
        }
        return countRunning() > 0;
    }

    [[nodiscard]] int countRunning() const
    {
        return static_cast<int>(
            std::count_if(running.begin(), running.end(),
                          [](const Place &place) { return place.process != nullptr; }));
    }

    /// Starts the next input of the place's group. Returns false when that has to wait until other
    /// inputs are done, because the system has no process left.
    bool start(Place &place)
    {
        const int sharers = static_cast<int>(waiting.size()) + countRunning();
        const InputGroup &group = groups[place.group];
        const FileJob job = {group.inputs[inputsDone[place.group]],
                             std::max(1, jobs / std::min(jobs, sharers)), group.taken};
        const auto index = static_cast<std::size_t>(&place - running.data());
        try {
            place.process = std::make_unique<FileProcess>(plan, job, board->files[index]);
        } catch (const pdf::NoProcess &) {
            if (countRunning() == 0)
                throw;
        }
        return place.process != nullptr;
    }

    /// Returns false when there is nothing to wait with: asking all the time would be no wait.
    bool waitForSomething()
    {
        constexpr int tickMs = 200;
        // Those that run only: the system takes no more entries than there may be descriptors.
        std::vector<pollfd> watched = {{stopSignals.descriptor(), POLLIN, 0}};
        std::vector<Place *> owners;
        for (Place &place : running) {
            place.isReadable = false;
            if (!place.process)
                continue;
            watched.push_back({place.process->descriptor(), POLLIN, 0});
            owners.push_back(&place);
        }
        const int ready = ::poll(watched.data(), watched.size(), tickMs);
        for (std::size_t i = 0; ready > 0 && i < owners.size(); ++i)
            owners[i]->isReadable = watched[i + 1].revents != 0;
        if (ready >= 0 || errno == EINTR)
            return true;
        if (!failure)
            failure = std::make_exception_ptr(std::runtime_error(std::strerror(errno)));
        return false;
    }

    void finish(Place &place)
    {
        const std::unique_ptr<FileProcess> process = std::move(place.process);
        const FileResult result = process->result();
        if (process->progress().lacksProcess && !isStopping) {
            // Alone it fails as all that follow would. Else the others have taken all there are,
            // and it gets another chance with fewer of them.
            if (possible == 1)
                throw pdf::Error(result.exitCode, result.cause.toStdString());
            possible = std::max(1, countRunning());
            waiting.push_back(place.group);
            return;
        }
        InputGroup &group = groups[place.group];
        // What was stopped has not failed; it is as if it had never begun.
        if (!isStopping || !result.documents.isEmpty()) {
            ++state.filesDone;
            state.pagesDone += result.pages;
            doneBytes += result.size;
            addPlaces(group.taken, result);
            listener.fileDone(result);
        }
        if (++inputsDone[place.group] < group.inputs.size())
            waiting.push_back(place.group);
    }

    void stop(int number)
    {
        if (isStopping)
            return;
        isStopping = true;
        stoppedBy = number;
        for (const Place &place : running) {
            if (place.process)
                place.process->stop();
        }
    }

    [[nodiscard]] RunState currentState() const
    {
        RunState current = state;
        double bytes = static_cast<double>(doneBytes);
        for (const Place &place : running) {
            if (!place.process)
                continue;
            const FileProgress &file = place.process->progress();
            current.pagesDone += file.pagesDone;
            if (file.pageCount > 0)
                bytes += static_cast<double>(QFileInfo(place.process->input()).size()) *
                         file.pagesDone / file.pageCount;
        }
        current.share = totalBytes > 0 ? bytes / static_cast<double>(totalBytes) : 0;
        return current;
    }

    const SplitPlan &plan;
    std::vector<InputGroup> &groups;
    int jobs;
    int possible; ///< jobs at a time that turned out to be possible
    const RunListener &listener;
    std::vector<Place> running;
    std::vector<std::size_t> waiting;  ///< the next one at the end
    std::vector<qsizetype> inputsDone; ///< of each group
    std::vector<long long> groupBytes;
    pdf::SharedMemory<ProgressBoard> board;
    StopSignals stopSignals;
    RunState state;
    long long totalBytes = 0;
    long long doneBytes = 0;
    bool isStopping = false;
    int stoppedBy = 0; ///< the signal, 0 when there was none
    std::exception_ptr failure;
};

} // namespace

int runGroups(const SplitPlan &plan, std::vector<InputGroup> groups, int jobs,
              const RunListener &listener)
{
    return Run(plan, groups, jobs, listener).run();
}

int availableProcessors()
{
    cpu_set_t available;
    const bool isKnown = ::sched_getaffinity(0, sizeof available, &available) == 0;
    return isKnown ? CPU_COUNT(&available) : 1;
}
