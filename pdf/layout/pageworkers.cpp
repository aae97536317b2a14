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
#include <new>
#include <optional>
#include <sched.h>
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

/// What one worker is at, written by the worker unless it is condemned.
struct Slot
{
    std::atomic<int> page{starting};
    std::atomic<long long> sinceMs{0}; ///< on the board's clock
};

/// The state that all processes share.
struct Board
{
    std::atomic<int> nextPage{0};
    std::atomic<bool> hasGivenUp{false};
    /// Time since the start. It stands still while the processes are stopped, so that this makes no
    /// page late.
    std::atomic<long long> clockMs{0};
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
                killAll(errno);
            const long long now = millisecondsNow();
            board->clockMs += std::min(now - std::exchange(lastLook, now), longestWaitMs);
            for (int i = 0; i < count; ++i)
                look(i);
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

    /// Without waits the only other way would be to ask all the time.
    void killAll(int error)
    {
        end(ExitCode::InputUnreadable, std::strerror(error));
        for (const pid_t process : processes) {
            if (process > 0)
                ::kill(process, SIGKILL);
        }
    }

    /// Returns false, with the cause in errno, when there is no further process.
    bool start(int worker)
    {
        Slot &slot = board->slots[worker];
        slot.page = starting;
        slot.sinceMs = board->clockMs.load();
        const pid_t process = forkBound();
        if (process == 0)
            beWorker(slot);
        processes[worker] = process;
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
                slot.sinceMs = board->clockMs.load();
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

    /// Whether the worker takes too long for what it is at, which is lost then even if it ends in
    /// the same moment: no page is both done and given up, and none is taken unheard of.
    bool condemnIfLate(Slot &slot, int page) const
    {
        return page != betweenPages &&
               board->clockMs - slot.sinceMs > work.secondsPerPage * millisecondsPerSecond &&
               slot.page.compare_exchange_strong(page, condemned);
    }

    void look(int worker)
    {
        if (processes[worker] <= 0)
            return;
        Slot &slot = board->slots[worker];
        int page = slot.page;
        const bool isLate = condemnIfLate(slot, page);
        if (isLate)
            ::kill(processes[worker], SIGKILL);
        const std::optional<int> ended = endOf(processes[worker], isLate ? 0 : WNOHANG);
        if (!ended)
            return;
        const int status = *ended;
        processes[worker] = 0;
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
        else
            giveUp(page, cause);
        if (hasWork() && !start(worker) && running == 0)
            startAll();
    }

    const PageWork &work;
    int count;
    SharedMemory<Board> board;
    ChildSignal signal;
    pid_t processes[maximalWorkers] = {};
    int running = 0;
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
