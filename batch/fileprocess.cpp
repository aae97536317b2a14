// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/fileprocess.h"

#include "batch/stagingfolder.h"
#include "batch/stopsignals.h"
#include "pdf/isolation/supervision.h"
#include "split/outputname.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

FileProcess::FileProcess(const SplitPlan &plan, const FileJob &job, FileProgress &progress)
    : inputFile(job.input),
      documentFolder(documentsFolder(plan.outputFolder, QFileInfo(job.input).baseName())),
      hadFolder(QFileInfo::exists(documentFolder)), shared(progress)
{
    shared.pageCount = 0;
    shared.pagesDone = 0;
    shared.lacksProcess = false;
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw pdf::NoProcess(errno);
    process = pdf::forkBound();
    if (process == 0)
        work(plan, job, progress, ends[1]);
    const int cause = errno;
    ::close(ends[1]);
    channel = ends[0];
    if (process < 0) {
        ::close(channel);
        throw pdf::NoProcess(cause);
    }
}

void FileProcess::work(const SplitPlan &plan, const FileJob &job, FileProgress &progress,
                       int channel) noexcept
{
    StopSignals::handOver();
    pdf::limitProcessorTime(pdf::documentTimeLimitSeconds);
    const QByteArray bytes =
        QJsonDocument(toJson(splitFile(plan, job, progress))).toJson(QJsonDocument::Compact);
    for (qsizetype sent = 0; sent < bytes.size();) {
        const ssize_t count = ::write(channel, bytes.constData() + sent,
                                      static_cast<std::size_t>(bytes.size() - sent));
        if (count < 0 && errno != EINTR)
            break;
        sent += count > 0 ? count : 0;
    }
    ::_exit(0);
}

FileProcess::~FileProcess()
{
    if (channel >= 0)
        ::close(channel);
    if (process > 0) {
        ::kill(process, SIGKILL);
        static_cast<void>(pdf::endOf(process));
    }
}

bool FileProcess::receive()
{
    std::array<char, 65536> buffer;
    const ssize_t count = ::read(channel, buffer.data(), buffer.size());
    if (count > 0)
        received.append(buffer.data(), count);
    if (count > 0 || (count < 0 && errno == EINTR))
        return false;
    status = pdf::endOf(process).value_or(SIGKILL);
    process = -1;
    return true;
}

FileResult FileProcess::result() const
{
    const QJsonDocument document = QJsonDocument::fromJson(received);
    if (document.isObject())
        return fromJson(document.object());
    clearAway();
    const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : SIGABRT;
    return failedResult(inputFile, pdf::ExitCode::InputUnreadable,
                        QString::fromStdString(pdf::causeOfEnd(signal)));
}

void FileProcess::stop() const
{
    if (process > 0)
        ::kill(process, StopSignals::forInputs);
}

/// The processes of the input hold its staging folder until the last of them has ended, a moment
/// after the first.
void FileProcess::clearAway() const
{
    constexpr int attempts = 20;
    constexpr std::chrono::milliseconds pause(10);
    const QDir folder(documentFolder);
    for (int i = 0; i < attempts && folder.exists(); ++i) {
        const bool isLeft = clearStaging(documentFolder);
        if (folder.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
            if (!hadFolder)
                ::rmdir(QFile::encodeName(documentFolder).constData());
            return;
        }
        if (!isLeft)
            return;
        std::this_thread::sleep_for(pause);
    }
}
