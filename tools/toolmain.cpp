// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tools/toolmain.h"

#include "pdf/document/mappedfile.h"
#include "pdf/isolation/limits.h"
#include "pdf/isolation/supervision.h"
#include "system/standardstreams.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <system_error>
#include <unistd.h>

namespace {

int print(const std::string &text)
{
    const bool isWritten = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    const auto code = isWritten ? pdf::ExitCode::Done : pdf::ExitCode::OutputUnwritable;
    return static_cast<int>(code);
}

/// A window that is killed must not leave its tools working for nobody. A shell or a script that
/// ends, on the other hand, may well have left them to themselves ("&", nohup): only the program
/// "sendrivo" beside the tool, as the kernel names it, takes its tools along.
void endWithWindow()
{
    const pid_t starter = ::getppid();
    std::error_code failure;
    const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (pdf::isSameFile("/proc/" + std::to_string(starter) + "/exe",
                        own.parent_path() / "sendrivo"))
        pdf::endWithParent(starter);
}

/// Runs the tool and tells a failure.
pdf::ExitCode runTool(const Tool &tool, const std::vector<std::string> &arguments)
{
    try {
        return tool.run(arguments);
    } catch (const pdf::Error &error) {
        printFailure(tool.name, error.what());
        return error.exitCode();
    } catch (const std::bad_alloc &) {
        printFailure(tool.name, "needs too much memory");
    } catch (const std::exception &error) {
        printFailure(tool.name, error.what());
    }
    return pdf::ExitCode::InputUnreadable;
}

} // namespace

int toolMain(const Tool &tool, int argc, char *argv[])
{
    openMissingStreams();
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    if (arguments.size() == 1 && (arguments[0] == "-help" || arguments[0] == "--help"))
        return print(tool.usage + exitCodeUsage());
    if (arguments.size() == 1 && (arguments[0] == "-version" || arguments[0] == "--version"))
        return print(tool.name + " " SENDRIVO_VERSION "\n");
    endWithWindow();
    pdf::limitResources();
    const int code = static_cast<int>(runTool(tool, arguments));
#if !defined(__SANITIZE_ADDRESS__)
    // Nothing is buffered. The libraries' clearing up would only keep the caller waiting; it shows
    // leaks where they are looked for.
    std::_Exit(code);
#endif
    return code;
}

void printFailure(const std::string &toolName, const std::string &cause)
{
    std::string line = toolName + ": " + cause;
    for (char &c : line) {
        if (static_cast<unsigned char>(c) < 0x20)
            c = ' ';
    }
    line += '\n';
    // One write, so that lines of several processes never mix. Nobody is left to tell a failure.
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

std::string exitCodeUsage()
{
    return "\n"
           "Exit codes:\n"
           "  0  done\n"
           "  2  command line not understood, or a page that does not exist asked for\n"
           "  3  input cannot be read: missing, no PDF, or damaged beyond repair\n"
           "  4  done in part: some pages were given up or have no image\n"
           "  5  output cannot be written\n"
           "  6  input needs a password, or its permissions forbid the operation\n";
}
