// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/isolation/callfilter.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <initializer_list>
#include <iterator>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace pdf {

namespace {

// A list of what is allowed, not of what is forbidden: calls that later kernels bring are closed.
// Each architecture has only a part of the older calls.

/// Memory, open files, time, signals to itself, the end.
constexpr int callsOfAll[] = {
    SYS_brk,
    SYS_mmap,
    SYS_munmap,
    SYS_mremap,
    SYS_mprotect,
    SYS_madvise,
    SYS_futex,
    SYS_read,
    SYS_pread64,
    SYS_readv,
    SYS_write,
    SYS_pwrite64,
    SYS_writev,
    SYS_lseek,
    SYS_close,
    SYS_fstat,
    SYS_newfstatat,
    SYS_statx,
    SYS_faccessat,
#ifdef SYS_faccessat2
    SYS_faccessat2,
#endif
#ifdef SYS_stat
    SYS_stat,
    SYS_lstat,
    SYS_access,
#endif
    SYS_clock_gettime,
    SYS_clock_getres,
    SYS_gettimeofday,
    SYS_getrandom,
    SYS_getrusage,
    SYS_sysinfo,
    SYS_uname,
    SYS_sched_getaffinity,
    SYS_sched_yield,
    SYS_getpid,
    SYS_getppid,
    SYS_gettid,
    SYS_set_robust_list,
    SYS_rt_sigaction,
    SYS_rt_sigprocmask,
    SYS_rt_sigreturn,
    SYS_sigaltstack,
    SYS_restart_syscall,
    SYS_exit,
    SYS_exit_group,
};

/// With paths, which Landlock checks.
constexpr int callsToOpen[] = {
    SYS_openat,
#ifdef SYS_open
    SYS_open,
#endif
};

constexpr int callsToWrite[] = {
    SYS_linkat,    SYS_unlinkat, SYS_renameat2,
#ifdef SYS_renameat
    SYS_renameat,
#endif
#ifdef SYS_rename
    SYS_rename,    SYS_unlink,
#endif
    SYS_ftruncate, SYS_fchmod,   SYS_umask,     SYS_flock,
};

/// Signals cannot be told apart by their receiver; Landlock keeps them inside.
constexpr int callsToStartWorkers[] = {
    SYS_wait4,           SYS_kill,
    SYS_prctl,           SYS_rt_sigtimedwait,
    SYS_seccomp,         callLandlockCreateRuleset,
    callLandlockAddRule, callLandlockRestrictSelf,
};

#if defined(__x86_64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_AARCH64;
#elif defined(__riscv) && __riscv_xlen == 64
constexpr std::uint32_t architecture = AUDIT_ARCH_RISCV64;
#else
constexpr std::uint32_t architecture = 0; // not known: no filter
#endif

/// A program in the kernel's language that looks at each call.
class Filter
{
public:
    Filter()
    {
        // The same number is another call on another architecture that the processor can run.
        load(offsetof(seccomp_data, arch));
        add(BPF_JMP | BPF_JEQ | BPF_K, architecture, 1, 0);
        refuse();
        load(offsetof(seccomp_data, nr));
    }

    template <std::size_t count>
    void allow(const int (&calls)[count])
    {
        for (const int call : calls) {
            add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 1);
            allow();
        }
    }

    /// What only asks or makes a second descriptor. Others have signals sent to any process.
    void allowFileControl()
    {
        constexpr std::uint32_t commands[] = {F_DUPFD, F_DUPFD_CLOEXEC, F_GETFD, F_SETFD, F_GETFL};
        constexpr auto count = static_cast<std::uint8_t>(std::size(commands));
        add(BPF_JMP | BPF_JEQ | BPF_K, SYS_fcntl, 0, 2 * count + 2);
        load(argument(1));
        for (const std::uint32_t command : commands) {
            add(BPF_JMP | BPF_JEQ | BPF_K, command, 0, 1);
            allow();
        }
        refuse();
    }

    /// To ask for this process's limits, not to lift them or to look at those of others.
    void allowAskingLimits()
    {
        constexpr unsigned isZero = BPF_JMP | BPF_JEQ | BPF_K;
        add(BPF_JMP | BPF_JEQ | BPF_K, SYS_prlimit64, 0, 8);
        load(argument(0));
        add(isZero, 0, 0, 5);
        load(argument(2)); // both halves of where the new limit stands
        add(isZero, 0, 0, 3);
        load(argument(2) + sizeof(std::uint32_t));
        add(isZero, 0, 0, 1);
        allow();
        refuse();
    }

    /// Forks, but none that gets namespaces, and with them rights, of its own.
    void allowFork()
    {
        constexpr std::uint32_t namespaces = CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS |
                                             CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID |
                                             CLONE_NEWNET;
        add(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 0, 4);
        load(argument(0));
        add(BPF_JMP | BPF_JSET | BPF_K, namespaces, 1, 0);
        allow();
        refuse();
    }

    [[nodiscard]] bool install()
    {
        refuse();
        sock_fprog program = {static_cast<unsigned short>(code.size()), code.data()};
        // Without this flag, older kernels slow the process down as if it ran strangers' code.
        for (const unsigned long flags : {SECCOMP_FILTER_FLAG_SPEC_ALLOW, 0UL}) {
            if (::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, flags, &program) == 0)
                return true;
        }
        return false;
    }

private:
    void add(unsigned instruction, std::uint32_t value, std::uint8_t ifTrue = 0,
             std::uint8_t ifFalse = 0)
    {
        code.push_back({static_cast<std::uint16_t>(instruction), ifTrue, ifFalse, value});
    }
    /// Where the lower half of an argument stands: all these processors keep it first.
    static constexpr std::size_t argument(int index)
    {
        return offsetof(seccomp_data, args) +
               static_cast<std::size_t>(index) * sizeof(std::uint64_t);
    }
    void load(std::size_t offset)
    {
        add(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
    }
    void allow() { add(BPF_RET | BPF_K, SECCOMP_RET_ALLOW); }
    void refuse() { add(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM); }

    std::vector<sock_filter> code;
};

} // namespace

bool filterCalls(const Permissions &permissions)
{
    if (architecture == 0)
        return false;
    Filter filter;
    filter.allow(callsOfAll);
    filter.allowFileControl();
    filter.allowAskingLimits();
    if (!permissions.readableFiles.empty() || !permissions.writableFolders.empty())
        filter.allow(callsToOpen);
    if (!permissions.writableFolders.empty())
        filter.allow(callsToWrite);
    if (permissions.mayStartWorkers) {
        filter.allow(callsToStartWorkers);
        filter.allowFork();
    }
    return filter.install();
}

} // namespace pdf
