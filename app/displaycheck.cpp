// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/displaycheck.h"

#include "app/privatetemporaryfolder.h"

#include <csignal>
#include <cstring>
#include <unistd.h>

namespace {

// For the signal handler. It runs in the middle of Qt's abort(), not of anything else, so it may do
// what an ordinary function may.
const char *lineWithoutDisplay = nullptr;
const PrivateTemporaryFolder *temporaryFolder = nullptr;

void endWithoutDisplay(int)
{
    if (temporaryFolder)
        temporaryFolder->remove();
    [[maybe_unused]] const ssize_t written =
        ::write(STDERR_FILENO, lineWithoutDisplay, std::strlen(lineWithoutDisplay));
    ::_exit(1);
}

} // namespace

DisplayCheck::DisplayCheck(const char *line, const PrivateTemporaryFolder *folder)
{
    lineWithoutDisplay = line;
    temporaryFolder = folder;
    std::signal(SIGABRT, endWithoutDisplay);
}

DisplayCheck::~DisplayCheck()
{
    std::signal(SIGABRT, SIG_DFL);
}
