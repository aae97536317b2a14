// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/filejob.h"

#include <QByteArray>

#include <sys/types.h>

/// splitFile() in a process of its own.
class FileProcess
{
public:
    /// Starts it; `progress` is in shared memory. Throws pdf::NoProcess.
    FileProcess(const SplitPlan &plan, const FileJob &job, FileProgress &progress);
    ~FileProcess();
    FileProcess(const FileProcess &) = delete;
    FileProcess &operator=(const FileProcess &) = delete;

    /// Readable when there is something to receive().
    [[nodiscard]] int descriptor() const { return channel; }
    /// Takes what has come. Returns whether the process has ended.
    bool receive();
    /// The result, once the process has ended. What it left when it crashed is cleared away.
    [[nodiscard]] FileResult result() const;
    /// Asks the process to end; one that is publishing documents finishes first.
    void stop() const;

    [[nodiscard]] const QString &input() const { return inputFile; }
    [[nodiscard]] FileProgress &progress() const { return shared; }

private:
    /// An exception must not leave the fork: it would unwind the caller and with it all other
    /// processes.
    [[noreturn]] static void work(const SplitPlan &plan, const FileJob &job, FileProgress &progress,
                                  int channel) noexcept;
    void clearAway() const;

    QString inputFile;
    QString documentFolder;
    bool hadFolder; ///< before this input
    FileProgress &shared;
    pid_t process = -1;
    int channel = -1;
    int status = 0; ///< as waitpid() gives it
    QByteArray received;
};
