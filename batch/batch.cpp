// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/batch.h"

#include "batch/commandline.h"
#include "batch/output.h"
#include "batch/rulecommands.h"
#include "batch/splitcommand.h"
#include "pdf/error.h"
#include "pdf/isolation/limits.h"
#include "pdf/isolation/supervision.h"
#include "system/standardstreams.h"

#include <QCoreApplication>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

/// File names are taken as UTF-8, as the window takes them; cron gives its jobs the locale "C".
void useUtf8()
{
    std::setlocale(LC_ALL, "");
    if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") != 0)
        ::setenv("LC_ALL", "C.UTF-8", 1);
}

/// Pages and documents free all that they take. Memory that goes back to the system each time and
/// comes again as fresh, zeroed pages costs a twentieth of the whole run.
void keepFreedMemory()
{
#if defined(__GLIBC__)
    constexpr int mebibyte = 1 << 20;
    ::mallopt(M_TRIM_THRESHOLD, 64 * mebibyte);
    ::mallopt(M_MMAP_THRESHOLD, 32 * mebibyte);
    ::mallopt(M_TOP_PAD, mebibyte);
#endif
}

/// Reads the one input in a process of its own.
void readInChild(const BatchOptions &options)
{
    pdf::continueInChild([&options](const std::string &cause) {
        complain(options.inputs.first() + QStringLiteral(": ") + QString::fromStdString(cause));
    });
}

pdf::ExitCode run(const BatchOptions &options)
{
    switch (options.action) {
    case Action::Help:
        printLine(helpText().chopped(1));
        break;
    case Action::Version:
        printLine(QStringLiteral("sendrivo-batch " SENDRIVO_VERSION));
        break;
    case Action::ListRules:
        listRules(options);
        break;
    case Action::ShowFragments:
        readInChild(options);
        showFragments(options);
        break;
    case Action::SaveRule:
        readInChild(options);
        saveNewRule(options);
        break;
    case Action::Split:
        return splitInputs(options);
    }
    return pdf::ExitCode::Done;
}

} // namespace

int runBatch(int argc, char *argv[])
{
    openMissingStreams();
    useUtf8();
    keepFreedMemory();
    const QCoreApplication application(argc, argv);
    pdf::limitResources();
    try {
        const QByteArrayList arguments(argv + std::min(argc, 1), argv + argc);
        return static_cast<int>(run(parseCommandLine(arguments)));
    } catch (const pdf::Error &error) {
        complain(QString::fromLocal8Bit(error.what()));
        return static_cast<int>(error.exitCode());
    } catch (const std::exception &error) {
        complain(QString::fromLocal8Bit(error.what()));
        return static_cast<int>(pdf::ExitCode::InputUnreadable);
    }
}
