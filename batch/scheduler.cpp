// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/scheduler.h"

#include "batch/fileprocess.h"
#include "batch/sharedmemory.h"
#include "batch/stopsignals.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <poll.h>
#include <sched.h>

namespace {

constexpr int maximalJobs = 256;

struct ProgressBoard
{
    std::array<FileProgress, maximalJobs> files;
};

class Run
{
public:
    Run(const SplitPlan &splitPlan, std::vector<InputGroup> &inputGroups, int wantedJobs,
        const RunListener &runListener)
        : plan(splitPlan), groups(inputGroups), jobs(std::clamp(wantedJobs, 1, maximalJobs)),
          listener(runListener), running(static_cast<std::size_t>(jobs))
    {
        for (const InputGroup &group : groups) {
            state.files += static_cast<int>(group.inputs.size());
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
        qsizetype input = 0;
        bool isReadable = false;
    };

    /// Does what there is to do now. Returns whether anything is left.
    bool goOn()
    {
        try {
            if (!startWaiting())
                return false;
            waitForSomething();
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
            if (place.process || waiting.empty() || isStopping)
                continue;
            place.group = waiting.back();
            place.input = 0;
            waiting.pop_back();
            start(place);
        }
        return std::any_of(running.begin(), running.end(),
                           [](const Place &place) { return place.process != nullptr; });
    }

    void start(Place &place)
    {
        const auto busy = std::count_if(running.begin(), running.end(), [](const Place &other) {
            return other.process != nullptr;
        });
        const int sharers = static_cast<int>(waiting.size()) + static_cast<int>(busy) + 1;
        const InputGroup &group = groups[place.group];
        const FileJob job = {group.inputs[place.input], std::max(1, jobs / std::min(jobs, sharers)),
                             group.taken};
        const auto index = static_cast<std::size_t>(&place - running.data());
        place.process = std::make_unique<FileProcess>(plan, job, board->files[index]);
    }

    void waitForSomething()
    {
        constexpr int tickMs = 200;
        std::vector<pollfd> watched = {{stopSignals.descriptor(), POLLIN, 0}};
        for (const Place &place : running)
            watched.push_back({place.process ? place.process->descriptor() : -1, POLLIN, 0});
        const int ready = ::poll(watched.data(), watched.size(), tickMs);
        for (std::size_t i = 0; i < running.size(); ++i)
            running[i].isReadable = ready > 0 && watched[i + 1].revents != 0;
    }

    void finish(Place &place)
    {
        const std::unique_ptr<FileProcess> process = std::move(place.process);
        const FileResult result = process->result();
        InputGroup &group = groups[place.group];
        // What was stopped has not failed; it is as if it had never begun.
        if (!isStopping || !result.documents.isEmpty()) {
            ++state.filesDone;
            state.pagesDone += result.pages;
            doneBytes += result.size;
            for (const DocumentResult &document : result.documents)
                group.taken.insert(document.file, result.input);
            listener.fileDone(result);
        }
        if (!isStopping && ++place.input < group.inputs.size())
            start(place);
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
    const RunListener &listener;
    std::vector<Place> running;
    std::vector<std::size_t> waiting; ///< the next one at the end
    std::vector<long long> groupBytes;
    SharedMemory<ProgressBoard> board;
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
