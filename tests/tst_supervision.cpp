// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/pageworkers.h"
#include "pdf/supervision.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
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
    void document_data();
    void document();
    void confinement_data();
    void confinement();
};

using Act = std::function<void()>;
using Attempt = std::function<bool(const QByteArray &folder)>;

namespace {

/// Where forks of this process write lines.
class Lines
{
public:
    Lines()
    {
        if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
            qFatal("no pipe");
    }
    ~Lines()
    {
        ::close(ends[0]);
        ::close(ends[1]);
    }
    Lines(const Lines &) = delete;
    Lines &operator=(const Lines &) = delete;

    void add(const std::string &line) const
    {
        const std::string whole = line + '\n';
        if (::write(ends[1], whole.data(), whole.size()) < 0)
            ::_exit(1);
    }
    /// In the order of the alphabet, because processes do not wait for each other.
    [[nodiscard]] QStringList all() const
    {
        std::array<char, 4096> bytes;
        const ssize_t size = std::max<ssize_t>(0, ::read(ends[0], bytes.data(), bytes.size()));
        QStringList lines =
            QString::fromUtf8(bytes.data(), size).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        lines.sort();
        return lines;
    }

private:
    std::array<int, 2> ends = {-1, -1};
};

/// Runs the function in a fork; its wait status.
int inFork(const std::function<void()> &function)
{
    const pid_t process = ::fork();
    if (process == 0) {
        function();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    return status;
}

/// Without the handlers that the test library and sanitizers install for their own reports.
void resetSignals()
{
    for (const int number : {SIGSEGV, SIGBUS, SIGABRT, SIGILL, SIGTRAP, SIGFPE})
        std::signal(number, SIG_DFL);
}

void crash()
{
    volatile int *volatile nowhere = nullptr;
    *nowhere = 1;
}

void loop()
{
    volatile bool goesOn = true;
    while (goesOn) {
    }
}

/// Without end unless the argument is 0, which the compiler does not know.
int recurse(int depth) // NOLINT(misc-no-recursion)
{
    volatile char stack[1000] = {static_cast<char>(depth)};
    return depth == 0 ? 0 : recurse(depth | 1) + stack[0];
}

void takeMemory()
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

constexpr bool hasSanitizers =
#if defined(__SANITIZE_ADDRESS__)
    true;
#else
    false;
#endif

pdf::Confinement possible;

} // namespace

void TestSupervision::initTestCase()
{
    pdf::limitResources();
    const int file = ::memfd_create("cut off", MFD_CLOEXEC);
    cutOffFile = static_cast<const char *>(::mmap(nullptr, 1, PROT_READ, MAP_PRIVATE, file, 0));
    QVERIFY(cutOffFile != MAP_FAILED);
    const int status = inFork([] {
        const pdf::Confinement result = pdf::confine({});
        ::_exit((result.limitsPaths ? 1 : 0) + (result.limitsCalls ? 2 : 0));
    });
    possible.limitsPaths = (WEXITSTATUS(status) & 1) != 0;
    possible.limitsCalls = (WEXITSTATUS(status) & 2) != 0;
}

void TestSupervision::pages_data()
{
    QTest::addColumn<Act>("atStart");
    QTest::addColumn<Act>("onPage1");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("lines");
    const Act nothing = [] {};
    const Act recursion = [] { recurse(::getpid()); };
    const auto lost = [](const char *name, const Act &act, const char *cause) {
        QTest::newRow(name) << Act([] {}) << act << 4
                            << QStringList{QString("1: ") + cause, "done 0", "done 2", "done 3"};
    };
    QTest::newRow("sound") << nothing << nothing << 0
                           << QStringList{"done 0", "done 1", "done 2", "done 3"};
    lost("crash", crash, "crashes the reader");
    lost("deep recursion", recursion, "crashes the reader");
    lost("endless loop", loop, "takes too long");
    lost(
        "error", [] { throw pdf::Error(pdf::ExitCode::InputUnreadable, "damaged"); }, "damaged");
    const Act reachOut = [] {
        if (::socket(AF_INET, SOCK_STREAM, 0) < 0)
            throw pdf::Error(pdf::ExitCode::InputUnreadable, "is confined");
    };
    if (possible.limitsCalls)
        lost("forbidden call", reachOut, "is confined");
    if (!hasSanitizers)
        lost("memory bomb", takeMemory, "needs too much memory");
    const auto ended = [&](const char *name, const Act &atStart, const Act &act, int exitCode,
                           const char *cause) {
        QTest::newRow(name) << atStart << act << exitCode
                            << QStringList{QString("-1: ") + cause, "done 0"};
    };
    ended(
        "output error", nothing,
        [] { throw pdf::Error(pdf::ExitCode::OutputUnwritable, "disk full"); }, 5, "disk full");
    ended("input becomes shorter", nothing, readBeyondTheEnd, 3,
          "became shorter while it was read");
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
    const QByteArray temporary = QDir::tempPath().toUtf8();
    pdf::PageWork work;
    work.pageCount = 4;
    if (lines.contains("1: takes too long"))
        work.secondsPerPage = 1;
    work.permissions.writableFolders = {temporary.toStdString()};
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
    QCOMPARE(static_cast<int>(pdf::workOnPages(work)), exitCode);
    QCOMPARE(written.all(), lines);
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
    lost(
        "abort", [] { std::abort(); }, "crashes the reader");
    lost("endless loop", loop, "takes too long to read, given up");
    lost("input becomes shorter", readBeyondTheEnd, "became shorter while it was read");
    lost(
        "killed", [] { ::raise(SIGKILL); }, "was stopped from outside while it was read");
}

void TestSupervision::document()
{
    QFETCH(Act, act);
    QFETCH(int, exitCode);
    QFETCH(QStringList, lines);
    const Lines written;
    const int status = inFork([&] {
        pdf::continueInChild([&](const std::string &cause) { written.add(cause); }, 1);
        resetSignals();
        act();
    });
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), exitCode);
    QCOMPARE(written.all(), lines);
}

void TestSupervision::confinement_data()
{
    QTest::addColumn<Attempt>("attempt");
    QTest::addColumn<bool>("needsPaths"); // whether a writer is held back by paths alone
    QTest::addColumn<bool>("mayWriter");
    const auto call = [](const char *name, const Attempt &attempt) {
        QTest::newRow(name) << attempt << false << false;
    };
    const auto openFile = [](const char *where, int flags) -> Attempt {
        return [where, flags](const QByteArray &folder) {
            return ::open((folder + where).constData(), flags | O_CLOEXEC, 0600) >= 0;
        };
    };
    QTest::newRow("read elsewhere") << openFile("/../elsewhere", O_RDONLY) << true << false;
    QTest::newRow("write elsewhere") << openFile("/../elsewhere", O_WRONLY) << true << false;
    QTest::newRow("make elsewhere") << openFile("/../new", O_WRONLY | O_CREAT) << true << false;
    QTest::newRow("remove elsewhere") << Attempt([](const QByteArray &folder) {
        return ::unlink((folder + "/../elsewhere").constData()) == 0;
    }) << true << false;
    QTest::newRow("make in its folder") << openFile("/new", O_WRONLY | O_CREAT) << false << true;
    QTest::newRow("rename in its folder") << Attempt([](const QByteArray &folder) {
        return ::rename((folder + "/inside").constData(), (folder + "/renamed").constData()) == 0;
    }) << false << true;
    call("connect", [](const QByteArray &) { return ::socket(AF_INET, SOCK_STREAM, 0) >= 0; });
    call("start a program", [](const QByteArray &) {
        ::execl("/bin/sh", "sh", "-c", "exit 42", nullptr);
        return false;
    });
    call("look into another process", [](const QByteArray &) {
        char byte = 0;
        iovec here = {&byte, 1};
        return ::syscall(SYS_process_vm_readv, ::getppid(), &here, 1UL, &here, 1UL, 0UL) == 1;
    });
    call("signal another process", [](const QByteArray &) { return ::kill(::getppid(), 0) == 0; });
    call("start a process", [](const QByteArray &) { return ::fork() > 0; });
    call("change access", [](const QByteArray &folder) {
        return ::chmod((folder + "/inside").constData(), 0777) == 0;
    });
}

void TestSupervision::confinement()
{
    QFETCH(Attempt, attempt);
    QFETCH(bool, needsPaths);
    QFETCH(bool, mayWriter);
    if (!possible.limitsCalls || (needsPaths && !possible.limitsPaths))
        QSKIP("this kernel or build does not confine processes");
    const auto succeeds = [&](const std::function<void(const std::string &)> &confineTo) {
        const QTemporaryDir around;
        const QByteArray folder = around.filePath("folder").toUtf8();
        QDir().mkdir(folder);
        writeFile(around.filePath("elsewhere"), "bytes");
        writeFile(folder + "/inside", "bytes");
        const int status = inFork([&] {
            confineTo(folder.toStdString());
            ::_exit(attempt(folder) ? 42 : errno == EPERM || errno == EACCES ? 0 : 1);
        });
        return WEXITSTATUS(status);
    };
    QCOMPARE(succeeds([](const std::string &) {}), 42);
    QCOMPARE(succeeds([](const std::string &) { pdf::confine({}); }), 0);
    QCOMPARE(succeeds([](const std::string &folder) {
                 pdf::confine({{}, {folder}});
             }),
             mayWriter ? 42 : 0);
}

SENDRIVO_TEST_MAIN(TestSupervision, QCoreApplication)
#include "tst_supervision.moc"
