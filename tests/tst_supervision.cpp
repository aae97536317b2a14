// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/isolation/supervision.h"
#include "pdf/layout/pageworkers.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"

#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <linux/futex.h>
#include <memory>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

/// What a process that reads a file may do to the others: nothing. It crashes, stalls, takes all
/// memory or tries to reach what it has no business with.
class TestSupervision : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void pages_data();
    void pages();
    void stoppedMeanwhile();
    void document_data();
    void document();
    void noProcess();
    void confinement_data();
    void confinement();
};

using Act = std::function<void()>;
using Attempt = std::function<bool(const QByteArray &folder)>;

namespace {

/// Lines that forks of this process write, in the order of the alphabet, because processes do not
/// wait for each other.
class Lines
{
public:
    Lines() { file.open(); }
    void add(const std::string &line) const
    {
        const std::string whole = line + '\n';
        if (::write(file.handle(), whole.data(), whole.size()) < 0)
            ::_exit(1);
    }
    [[nodiscard]] QStringList all() const
    {
        const QString text = QString::fromUtf8(readFile(file.fileName()));
        QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        lines.sort();
        return lines;
    }

private:
    QTemporaryFile file;
};

/// Runs the function in a fork; its exit code.
int inFork(const Act &function)
{
    const pid_t process = ::fork();
    if (process == 0) {
        function();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Without the handlers that the test library and sanitizers install for their own reports.
void resetSignals()
{
    for (const int number : {SIGSEGV, SIGBUS, SIGABRT})
        std::signal(number, SIG_DFL);
}

void crash()
{
    // Not null, which sanitizers report instead.
    volatile std::uintptr_t nowhere = 4096;
    *reinterpret_cast<volatile int *>(nowhere) = 1;
}

void loop()
{
    volatile bool goesOn = true;
    while (goesOn) {
    }
}

/// By a call that is not forbidden; for ever without a time.
void standStill(const timespec *time)
{
    const std::uint32_t nobodyChangesIt = 0;
    ::syscall(SYS_futex, &nobodyChangesIt, FUTEX_WAIT, 0U, time);
}

/// Without end unless the argument is 0, which the compiler does not know.
int recurse(int depth) // NOLINT(misc-no-recursion)
{
    volatile char stack[1000] = {static_cast<char>(depth)};
    return depth == 0 ? 0 : recurse(depth | 1) + stack[0];
}

[[maybe_unused]] void takeMemory()
{
    constexpr std::size_t size = std::size_t{64} << 20;
    for (std::vector<std::unique_ptr<char[]>> blocks;;)
        blocks.emplace_back(new char[size]);
}

/// A file of no bytes, mapped as if it had some.
const volatile char *cutOffFile = nullptr;

void readBeyondTheEnd()
{
    static_cast<void>(*cutOffFile);
}

pdf::Confinement possible;

} // namespace

void TestSupervision::initTestCase()
{
    pdf::limitResources();
    const int file = ::memfd_create("cut off", MFD_CLOEXEC);
    void *bytes = ::mmap(nullptr, 1, PROT_READ, MAP_PRIVATE, file, 0);
    QVERIFY(bytes != MAP_FAILED);
    cutOffFile = static_cast<const char *>(bytes);
    const int result = inFork([] {
        const pdf::Confinement confinement = pdf::confine({});
        ::_exit((confinement.limitsPaths ? 1 : 0) + (confinement.limitsCalls ? 2 : 0));
    });
    possible = {(result & 1) != 0, (result & 2) != 0};
}

void TestSupervision::pages_data()
{
    QTest::addColumn<Act>("atStart");
    QTest::addColumn<Act>("onPage1");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("lines");
    const Act nothing = [] {};
    const QStringList others = {"done 0", "done 2", "done 3"};
    QTest::newRow("sound") << nothing << nothing << 0
                           << QStringList{"done 0", "done 1", "done 2", "done 3"};
    const auto lost = [&](const char *name, const Act &act, const char *cause) {
        QTest::newRow(name) << nothing << act << 4 << QStringList(QString("1: ") + cause) + others;
    };
    lost("crash", crash, "crashes the reader");
    lost(
        "deep recursion", [] { recurse(::getpid()); }, "crashes the reader");
    lost("endless loop", loop, "takes too long");
    lost(
        "endless wait", [] { standStill(nullptr); }, "takes too long");
    lost(
        "error", [] { throw pdf::Error(pdf::ExitCode::InputUnreadable, "damaged"); }, "damaged");
    lost(
        "exception of a library", [] { throw std::runtime_error("odd"); }, "odd");
    lost(
        "library that is content", [] { ::_exit(0); }, "crashes the reader");
#if !defined(__SANITIZE_ADDRESS__)
    lost("memory bomb", takeMemory, "needs too much memory");
#endif
    const Act waitAWhile = [] {
        const timespec halfASecond = {0, 500 * 1000 * 1000};
        for (int i = 0; i < 4; ++i)
            standStill(&halfASecond);
    };
    QTest::newRow("slow disk") << nothing << waitAWhile << 0
                               << QStringList{"done 0", "done 1", "done 2", "done 3"};
    QTest::newRow("endless loop, too long in all")
        << nothing << Act(loop) << 3
        << QStringList{"-1: takes too long to read, given up", "done 0"};
    const Act reachOut = [] {
        if (::socket(AF_INET, SOCK_STREAM, 0) < 0)
            throw pdf::Error(pdf::ExitCode::InputUnreadable, "is confined");
    };
    if (possible.limitsCalls)
        lost("forbidden call", reachOut, "is confined");
    const Act failToWrite = [] { throw pdf::Error(pdf::ExitCode::OutputUnwritable, "disk full"); };
    QTest::newRow("output error") << nothing << failToWrite << 5
                                  << QStringList{"-1: disk full", "done 0"};
    QTest::newRow("input becomes shorter")
        << nothing << Act(readBeyondTheEnd) << 3
        << QStringList{"-1: became shorter while it was read", "done 0"};
    QTest::newRow("crash before the first page")
        << Act(crash) << nothing << 3 << QStringList{"-1: crashes the reader"};
}

void TestSupervision::pages()
{
    QFETCH(Act, atStart);
    QFETCH(Act, onPage1);
    QFETCH(int, exitCode);
    QFETCH(QStringList, lines);
    const Lines written;
    pdf::PageWork work;
    work.pageCount = 4;
    work.secondsPerPage = QByteArray(QTest::currentDataTag()).contains("in all") ? 20 : 1;
    work.secondsInAll = 2;
    work.secondsOfStall = 1;
    work.startWorker = [&]() -> std::function<void(int)> {
        resetSignals();
        atStart();
        return [&](int index) {
            if (index == 1)
                onPage1();
            written.add("done " + std::to_string(index));
        };
    };
    work.report = [&](int index, const std::string &cause) {
        written.add(std::to_string(index) + ": " + cause);
    };
    std::signal(SIGCHLD, SIG_IGN); // as some programs leave it to those that they start
    QCOMPARE(static_cast<int>(pdf::workOnPages(work)), exitCode);
    QCOMPARE(written.all(), lines);
}

void TestSupervision::stoppedMeanwhile()
{
    // By the user's Ctrl+Z or a scheduler, for longer than a page may take.
    const pid_t group = ::fork();
    if (group == 0) {
        ::setpgid(0, 0);
        pdf::PageWork work;
        work.pageCount = 1;
        work.secondsOfStall = 2;
        work.startWorker = []() -> std::function<void(int)> {
            return [](int) {
                while (std::clock() < CLOCKS_PER_SEC / 3) {
                }
            };
        };
        work.report = [](int, const std::string &) {};
        ::_exit(static_cast<int>(pdf::workOnPages(work)));
    }
    QTest::qSleep(100);
    ::kill(-group, SIGSTOP);
    QTest::qSleep(2500);
    ::kill(-group, SIGCONT);
    int status = -1;
    ::waitpid(group, &status, 0);
    QCOMPARE(status, 0);
}

void TestSupervision::document_data()
{
    QTest::addColumn<Act>("act");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("lines");
    const auto lost = [](const char *name, const Act &act, const char *cause) {
        QTest::newRow(name) << act << 3 << QStringList(cause);
    };
    QTest::newRow("ends by itself") << Act([] { ::_exit(6); }) << 6 << QStringList();
    lost("crash", crash, "crashes the reader");
    lost("endless loop", loop, "takes too long to read, given up");
    lost("input becomes shorter", readBeyondTheEnd, "became shorter while it was read");
}

void TestSupervision::document()
{
    QFETCH(Act, act);
    QFETCH(int, exitCode);
    QFETCH(QStringList, lines);
    const Lines written;
    const Act supervised = [&] {
        std::signal(SIGCHLD, SIG_IGN);
        sigset_t all;
        ::sigfillset(&all);
        ::sigprocmask(SIG_BLOCK, &all, nullptr);
        pdf::continueInChild([&](const std::string &cause) { written.add(cause); }, 1);
        resetSignals();
        act();
    };
    QCOMPARE(inFork(supervised), exitCode);
    QCOMPARE(written.all(), lines);
}

void TestSupervision::noProcess()
{
    const auto causeOf = [](const Act &act) {
        const Lines written;
        inFork([&] {
            // No limit holds for root.
            const bool isUsual = ::geteuid() != 0 || ::setuid(12345) == 0;
            const rlimit none = {0, 0};
            if (!isUsual || ::setrlimit(RLIMIT_NPROC, &none) != 0)
                ::_exit(1);
            try {
                act();
            } catch (const pdf::NoProcess &error) {
                written.add(error.what());
            }
        });
        return written.all().join(QChar());
    };
    const QString cause = "no process can be started: Resource temporarily unavailable";
    QCOMPARE(causeOf([] { pdf::continueInChild([](const std::string &) {}); }), cause);
    pdf::PageWork work;
    work.pageCount = 1;
    QCOMPARE(causeOf([&] { static_cast<void>(pdf::workOnPages(work)); }), cause);
}

void TestSupervision::confinement_data()
{
    QTest::addColumn<Attempt>("attempt");
    QTest::addColumn<bool>("needsPaths"); // whether paths alone hold back what may write
    QTest::addColumn<bool>("mayWriter");
    const auto row = [](const char *name, bool needsPaths, bool mayWriter, const Attempt &attempt) {
        QTest::newRow(name) << attempt << needsPaths << mayWriter;
    };
    const auto openFile = [](const char *where, int flags) -> Attempt {
        return [where, flags](const QByteArray &folder) {
            return ::open((folder + where).constData(), flags | O_CLOEXEC, 0600) >= 0;
        };
    };
    row("read elsewhere", true, false, openFile("/../elsewhere", O_RDONLY));
    row("write elsewhere", true, false, openFile("/../elsewhere", O_WRONLY));
    row("remove elsewhere", true, false, [](const QByteArray &folder) {
        return ::unlink((folder + "/../elsewhere").constData()) == 0;
    });
    row("write in its folder", false, true, openFile("/new", O_WRONLY | O_CREAT));
    row("rename in its folder", false, true, [](const QByteArray &folder) {
        return ::rename((folder + "/inside").constData(), (folder + "/new").constData()) == 0;
    });
    row("connect", false, false,
        [](const QByteArray &) { return ::socket(AF_INET, SOCK_STREAM, 0) >= 0; });
    row("start a program", false, false, [](const QByteArray &) {
        ::execl("/bin/sh", "sh", "-c", "exit 42", nullptr);
        return false;
    });
    row("look into another process", false, false, [](const QByteArray &) {
        char byte = 0;
        iovec here = {&byte, 1};
        return ::syscall(SYS_process_vm_readv, ::getppid(), &here, 1UL, &here, 1UL, 0UL) == 1;
    });
    row("signal another process", false, false,
        [](const QByteArray &) { return ::kill(::getppid(), 0) == 0; });
    row("ask for another process's limits", false, false, [](const QByteArray &) {
        rlimit limit = {};
        return ::prlimit(::getppid(), RLIMIT_CORE, nullptr, &limit) == 0;
    });
    row("lift a limit", false, false, [](const QByteArray &) {
        rlimit limit = {};
        return ::getrlimit(RLIMIT_NOFILE, &limit) == 0 && ::setrlimit(RLIMIT_NOFILE, &limit) == 0;
    });
    row("have signals sent to another process", false, false,
        [](const QByteArray &) { return ::fcntl(STDERR_FILENO, F_SETOWN, ::getppid()) == 0; });
    row("start a process", false, false, [](const QByteArray &) { return ::fork() > 0; });
}

void TestSupervision::confinement()
{
    QFETCH(Attempt, attempt);
    QFETCH(bool, needsPaths);
    QFETCH(bool, mayWriter);
    if (!possible.limitsCalls || (needsPaths && !possible.limitsPaths))
        QSKIP("this kernel or build does not confine processes");
    constexpr int succeeds = 42;
    constexpr int isRefused = 0;
    const auto outcome = [&](const std::function<void(const std::string &)> &confineTo) {
        const QTemporaryDir around;
        const QByteArray folder = around.filePath("folder").toUtf8();
        QDir().mkdir(folder);
        writeFile(around.filePath("elsewhere"), "bytes");
        writeFile(folder + "/inside", "bytes");
        return inFork([&] {
            confineTo(folder.toStdString());
            ::_exit(attempt(folder) ? succeeds : errno == EPERM || errno == EACCES ? isRefused : 1);
        });
    };
    QCOMPARE(outcome([](const std::string &) {}), succeeds);
    QCOMPARE(outcome([](const std::string &) { pdf::confine({}); }), isRefused);
    QCOMPARE(outcome([](const std::string &folder) {
                 pdf::confine({{}, {folder}});
             }),
             mayWriter ? succeeds : isRefused);
}

SENDRIVO_TEST_MAIN(TestSupervision, QCoreApplication)
#include "tst_supervision.moc"
