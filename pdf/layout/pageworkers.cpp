// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/pageworkers.h"

#include "pdf/isolation/sharedmemory.h"
#include "pdf/isolation/supervision.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <ctime>
#include <new>
#include <optional>
#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace pdf {

namespace {

constexpr int maximalWorkers = 128;

constexpr long long millisecondsPerSecond = 1000;
constexpr long usualWaitMs = 200;
/// A wait is that long on a busy machine; a longer one means that the process was stopped.
constexpr long long longestWaitMs = 500;

long long millisecondsNow()
{
    using std::chrono::milliseconds;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<milliseconds>(now).count();
}

constexpr char outOfMemory[] = "needs too much memory";

// What a worker is at when it is at no page.
constexpr int starting = -1;
constexpr int betweenPages = -2;
constexpr int condemned = -3; ///< its page took too long, whatever becomes of it now

constexpr long long nanosecondsPerSecond = 1000LL * 1000 * 1000;

/// Processor time that a process has used so far, 0 when that is not known.
long long nanosecondsUsed(clockid_t clock)
{
    timespec used = {};
    return ::clock_gettime(clock, &used) == 0 ? used.tv_sec * nanosecondsPerSecond + used.tv_nsec
                                              : 0;
}

long long nanosecondsUsedBy(pid_t process)
{
    clockid_t clock = 0;
    return ::clock_getcpuclockid(process, &clock) == 0 ? nanosecondsUsed(clock) : 0;
}

/// That of the processes that this one has waited for.
long long nanosecondsOfEnded()
{
    rusage used = {};
    ::getrusage(RUSAGE_CHILDREN, &used);
    return (used.ru_utime.tv_sec + used.ru_stime.tv_sec) * nanosecondsPerSecond +
           (used.ru_utime.tv_usec + used.ru_stime.tv_usec) * 1000LL;
}

/// What one worker is at, written by the worker unless it is condemned.
struct Slot
{
    std::atomic<int> page{starting};
    std::atomic<long long> usedBeforeNs{0}; ///< processor time before it came to that
};

/// What the supervisor has seen of a worker.
struct Watched
{
    pid_t process = 0; ///< 0 when there is none
    long long usedNs = 0;
    long long movedMs = 0; ///< when it last used the processor, on the supervisor's clock
};

/// The state that all processes share.
struct Board
{
    std::atomic<int> nextPage{0};
    std::atomic<bool> hasGivenUp{false};
    std::atomic<int> ending{0}; ///< exit code of what ended the whole work, 0 while it goes on
    Slot slots[maximalWorkers];
};

/// Holds back SIGCHLD, so that the supervisor can wait for it with a time limit.
class ChildSignal
{
public:
    ChildSignal()
    {
        ::sigemptyset(&set);
        ::sigaddset(&set, SIGCHLD);
        ::sigprocmask(SIG_BLOCK, &set, &before);
    }
    ~ChildSignal() { restore(); }
    ChildSignal(const ChildSignal &) = delete;
    ChildSignal &operator=(const ChildSignal &) = delete;

    void restore() { ::sigprocmask(SIG_SETMASK, &before, nullptr); }
    /// Returns whether there was a wait, be it a short one.
    [[nodiscard]] bool wait() const
    {
        const timespec timeout{0, usualWaitMs * 1000 * 1000};
        return ::sigtimedwait(&set, nullptr, &timeout) > 0 || errno == EAGAIN || errno == EINTR;
    }

private:
    sigset_t set = {};
    sigset_t before = {};
};

class Supervisor
{
public:
    explicit Supervisor(const PageWork &pageWork)
        : work(pageWork), count(std::clamp(pageWork.workerCount, 1, maximalWorkers))
    {
    }

    ExitCode run()
    {
        startAll();
        for (long long lastLook = millisecondsNow(); running > 0;) {
            if (!signal.wait())
                killAll(std::strerror(errno));
            const long long now = millisecondsNow();
            clockMs += std::min(now - std::exchange(lastLook, now), longestWaitMs);
            for (int i = 0; i < count; ++i)
                look(i);
            if (work.secondsInAll > 0 && usedInAll() > work.secondsInAll * nanosecondsPerSecond)
                killAll(causeOfEnd(SIGPROF));
        }
        if (board->ending != 0)
            return static_cast<ExitCode>(board->ending.load());
        return board->hasGivenUp ? ExitCode::DoneInPart : ExitCode::Done;
    }

private:
    [[nodiscard]] bool hasWork() const
    {
        return board->ending == 0 && board->nextPage < work.pageCount;
    }

    /// Starts what workers there are processes for. Throws NoProcess when there is none; those that
    /// others need for a moment may be free again soon.
    void startAll()
    {
        constexpr int attempts = 5;
        for (int i = 0; running == 0; ++i) {
            for (int worker = 0; worker < count && start(worker); ++worker) {
            }
            const int cause = errno;
            if (running == 0 && (cause != EAGAIN || i == attempts || !signal.wait()))
                throw NoProcess(cause);
        }
    }

    /// Ends the work at once, because it takes too long or there is no waiting for it: the only
    /// other way would be to ask all the time.
    void killAll(const std::string &cause)
    {
        end(ExitCode::InputUnreadable, cause);
        for (const Watched &worker : watched) {
            if (worker.process > 0)
                ::kill(worker.process, SIGKILL);
        }
    }

    [[nodiscard]] long long usedInAll() const
    {
        long long used = nanosecondsOfEnded() - usedAtStartNs;
        for (const Watched &worker : watched)
            used += worker.process > 0 ? worker.usedNs : 0;
        return used;
    }

    /// Returns false, with the cause in errno, when there is no further process.
    bool start(int worker)
    {
        Slot &slot = board->slots[worker];
        slot.page = starting;
        slot.usedBeforeNs = 0;
        const pid_t process = forkBound();
        if (process == 0)
            beWorker(slot);
        watched[worker] = {process, 0, clockMs};
        running += process > 0 ? 1 : 0;
        return process > 0;
    }

    /// The whole life of a worker process.
    [[noreturn]] void beWorker(Slot &slot)
    {
        signal.restore();
        confine(work.permissions);
        try {
            const std::function<void(int)> convert = work.startWorker();
            slot.page = betweenPages;
            while (hasWork()) {
                const int page = board->nextPage++;
                if (page >= work.pageCount)
                    break;
                slot.usedBeforeNs = nanosecondsUsed(CLOCK_PROCESS_CPUTIME_ID);
                slot.page = page;
                const std::optional<std::string> failure = causeOfFailure(convert, page);
                int expected = page;
                if (!slot.page.compare_exchange_strong(expected, betweenPages))
                    ::_exit(0); // the supervisor has given it up
                if (failure)
                    giveUp(page, *failure);
            }
        } catch (const Error &error) {
            end(error.exitCode(), error.what());
        } catch (const std::bad_alloc &) {
            end(ExitCode::InputUnreadable, outOfMemory);
        } catch (const std::exception &error) {
            end(ExitCode::InputUnreadable, error.what());
        }
        slot.page = betweenPages;
        ::_exit(0);
    }

    static std::optional<std::string> causeOfFailure(const std::function<void(int)> &convert,
                                                     int page)
    {
        try {
            convert(page);
        } catch (const Error &error) {
            if (error.exitCode() == ExitCode::OutputUnwritable)
                throw;
            return error.what();
        } catch (const std::bad_alloc &) {
            return outOfMemory;
        } catch (const std::exception &error) {
            return error.what();
        }
        return std::nullopt;
    }

    void giveUp(int page, const std::string &cause)
    {
        board->hasGivenUp = true;
        work.report(page, cause);
    }

    /// Ends the whole work; of several workers that meet the same cause one reports it.
    void end(ExitCode code, const std::string &cause)
    {
        int expected = 0;
        if (board->ending.compare_exchange_strong(expected, static_cast<int>(code)))
            work.report(-1, cause);
    }

    /// Whether the worker takes too long for what it is at, or has not used the processor for long,
    /// which does not happen to one that waits for its turn or for a slow disk. It is lost then
    /// even if it ends in the same moment: no page is both done and given up, and none is taken
    /// unheard of.
    bool condemnIfLate(Watched &worker, Slot &slot, int page) const
    {
        const long long used = nanosecondsUsedBy(worker.process);
        if (used != std::exchange(worker.usedNs, used))
            worker.movedMs = clockMs;
        const bool isLate = used - slot.usedBeforeNs > work.secondsPerPage * nanosecondsPerSecond ||
                            clockMs - worker.movedMs > work.secondsOfStall * millisecondsPerSecond;
        return page != betweenPages && isLate && slot.page.compare_exchange_strong(page, condemned);
    }

    void look(int index)
    {
        Watched &worker = watched[index];
        if (worker.process <= 0)
            return;
        Slot &slot = board->slots[index];
        int page = slot.page;
        const bool isLate = condemnIfLate(worker, slot, page);
        if (isLate)
            ::kill(worker.process, SIGKILL);
        const std::optional<int> ended = endOf(worker.process, isLate ? 0 : WNOHANG);
        if (!ended)
            return;
        const int status = *ended;
        worker.process = 0;
        --running;
        if (!isLate)
            page = slot.page;
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0 && page == betweenPages)
            return;
        // A library that ends its process has met something as bad as a crash.
        const int number = WIFSIGNALED(status) ? WTERMSIG(status) : SIGABRT;
        const std::string cause = isLate ? "takes too long" : causeOfEnd(number);
        // An input that became shorter is lost for all pages.
        if (page < 0 || number == SIGBUS)
            end(ExitCode::InputUnreadable, cause);
        else if (board->ending == 0)
            giveUp(page, cause);
        if (hasWork() && !start(index) && running == 0)
            startAll();
    }

    const PageWork &work;
    int count;
    SharedMemory<Board> board;
    ChildSignal signal;
    Watched watched[maximalWorkers];
    int running = 0;
    /// Time since the start. It stands still while the processes are stopped, so that this makes no
    /// page late.
    long long clockMs = 0;
    long long usedAtStartNs = nanosecondsOfEnded();
};

} // namespace

ExitCode workOnPages(const PageWork &work)
{
    return work.pageCount > 0 ? Supervisor(work).run() : ExitCode::Done;
}

int usefulWorkerCount(int pageCount)
{
    // Starting a further process costs as much as converting about ten pages.
    constexpr int pagesPerWorker = 10;
    cpu_set_t available;
    const bool isKnown = ::sched_getaffinity(0, sizeof available, &available) == 0;
    const int processors = isKnown ? CPU_COUNT(&available) : 1;
    return std::clamp(pageCount / pagesPerWorker, 1, std::min(processors, maximalWorkers));
}

} // namespace pdf
