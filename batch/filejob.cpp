// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/filejob.h"

#include "batch/durability.h"
#include "batch/pagetexts.h"
#include "batch/sharedrecords.h"
#include "batch/stagingfolder.h"
#include "pdf/assembly/assembly.h"
#include "pdf/document/pageranges.h"
#include "pdf/isolation/sharedmemory.h"
#include "pdf/isolation/supervision.h"
#include "pdf/layout/pageworkers.h"
#include "split/inputstate.h"
#include "split/pagerange.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <optional>
#include <unistd.h>

namespace {

using pdf::Error;
using pdf::ExitCode;

const QString brokenTable = QStringLiteral("its table of objects had to be rebuilt");

void holdBackSignals()
{
    sigset_t set;
    ::sigfillset(&set);
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
}

std::vector<int> indexesOf(const QString &ranges)
{
    std::vector<pdf::PageRange> spans;
    for (const PageSpan &span : pageSpans(ranges))
        spans.push_back({span.first, span.last});
    return pdf::pageIndexes(spans);
}

/// Writes one document aside and makes sure that it has its pages.
void writeDocument(const SplitPlan &plan, pdf::Document &document, const DocumentResult &planned,
                   const std::string &path)
{
    const std::vector<int> indexes = indexesOf(planned.range);
    pdf::OutputFile output(path);
    pdf::assemblePages(document, indexes, output);
    output.publish();
    const pdf::Document written(path);
    if (written.pages().pages.size() != indexes.size())
        throw Error(ExitCode::InputUnreadable, "pages are missing in the document");
    if (plan.documentOptions) {
        pdf::OutputFile finished(path);
        pdf::applyOptions(path, *plan.documentOptions, finished);
        finished.publish();
    }
}

/// The end of the documents from `first` on that one set of processes is to write: what they have
/// read of the input stays in their memory until they end.
int endOfPart(const QList<DocumentResult> &documents, int first)
{
    constexpr int pagesAtATime = 4000;
    int end = first;
    for (int pages = 0; end < documents.size() && pages < pagesAtATime; ++end)
        pages += pageTotal(pageSpans(documents[end].range));
    return end;
}

/// Writes the documents from `first` to before `end` aside, in processes of their own. Notes what
/// damage shows only then.
void writePart(const SplitPlan &plan, pdf::Document &document,
               const QList<DocumentResult> &documents, int first, int end,
               const StagingFolder &staging, int workers, bool &isDamaged)
{
    const int count = end - first;
    const pdf::SharedMemory<std::atomic<bool>> showsDamage;
    SharedRecords causes(count + 1);
    pdf::PageWork work;
    work.pageCount = count;
    work.workerCount = std::clamp(workers, 1, count);
    work.secondsPerPage = pdf::documentTimeLimitSeconds;
    work.secondsInAll = pdf::allResultsTimeLimitSeconds(count);
    work.permissions.writableFolders = {
        pdf::folderOf(QFile::encodeName(staging.pathOf(0)).toStdString())};
    work.startWorker = [&]() -> std::function<void(int)> {
        return [&](int index) {
            writeDocument(plan, document, documents[first + index],
                          QFile::encodeName(staging.pathOf(first + index)).toStdString());
            if (!document.damage().empty())
                *showsDamage = true;
        };
    };
    work.report = [&](int index, const std::string &cause) {
        causes.put(index < 0 ? count : index, cause);
    };
    const ExitCode code = pdf::workOnPages(work);
    isDamaged = isDamaged || *showsDamage;
    if (code == ExitCode::Done)
        return;
    for (int index = count; index >= 0; --index) {
        if (const auto cause = causes.at(index))
            throw Error(code == ExitCode::DoneInPart ? ExitCode::InputUnreadable : code,
                        std::string(*cause));
    }
    throw Error(ExitCode::InputUnreadable, "documents cannot be written");
}

/// An input as it was before anything of it was read. Pages of two states in one document, or
/// ranges found in one state and taken from another, are what nobody would notice.
class UnchangedInput
{
public:
    explicit UnchangedInput(const std::string &inputPath)
        : path(inputPath), before(settledInputState(inputPath)),
          file(::open(inputPath.c_str(), O_PATH | O_CLOEXEC))
    {
    }
    ~UnchangedInput()
    {
        if (file >= 0)
            ::close(file);
    }
    Q_DISABLE_COPY_MOVE(UnchangedInput)

    /// Throws Error when it was written to, even where a program set the time back. Removing it or
    /// putting another file in its place changes a time, too, but not what is open.
    void check() const
    {
        std::optional<InputState> now = inputState(file);
        const std::optional<InputState> inPlace = inputState(path);
        if (now && (!inPlace || inPlace->inode != now->inode || inPlace->device != now->device))
            now->changedNs = before ? before->changedNs : 0;
        if (now != before)
            throw Error(ExitCode::InputUnreadable, "was changed while it was read");
    }
    /// Throws Error when what was opened is another file.
    void checkOpened(int descriptor) const
    {
        if (inputState(descriptor) != before)
            throw Error(ExitCode::InputUnreadable, "was changed while it was read");
    }

private:
    std::string path;
    std::optional<InputState> before;
    int file;
};

/// Names the documents anew.
using Naming = std::function<QList<DocumentResult>(const IsWritten &isWritten)>;

/// What is damaged of an input, one entry each; nothing when it is sound.
QStringList damageOf(const pdf::Document &document, const PageTexts &texts)
{
    QStringList damage;
    if (!document.damage().empty())
        damage.append(QString::fromStdString(document.damage()));
    else if (texts.isRepaired)
        damage.append(brokenTable);
    if (!texts.pagesDamaged.isEmpty())
        damage.append(QStringLiteral("contents cannot be decoded on pages ") +
                      rangesOf(texts.pagesDamaged));
    return damage;
}

/// Returns whether the documents are to be written nevertheless.
bool setDamaged(const SplitPlan &plan, FileResult &result, const QStringList &damage)
{
    for (const QString &what : damage)
        result.complaints.append(QStringLiteral("damaged: ") + what);
    result.verdict = verdict::damaged;
    result.exitCode = ExitCode::DoneInPart;
    if (plan.damaged == DamagedFiles::Split)
        return true;
    result.documents.clear();
    result.cause = QStringLiteral("is damaged: no documents are written (--damaged split does it)");
    return false;
}

void setVerdict(FileResult &result, const PageTexts &texts)
{
    result.complaints = texts.complaints;
    result.pagesWithoutText = rangesOf(texts.pagesWithout);
    result.pagesWithUnknownLetters = rangesOf(texts.pagesUnknown);
    result.verdict = verdict::done;
    if (!texts.pagesGivenUp.isEmpty()) {
        result.verdict = verdict::pagesGivenUp;
        result.exitCode = ExitCode::DoneInPart;
    } else if (texts.pagesWithout.size() == result.pages) {
        result.verdict = verdict::noTextLayer;
    } else if (!texts.hasAnyAtPosition) {
        result.verdict = verdict::noTextAtPosition;
    } else if (!texts.pagesWithout.isEmpty()) {
        // Such a page joins the document before it, whatever is on it.
        result.verdict = verdict::pagesWithoutTextLayer;
    } else if (!texts.pagesUnknown.isEmpty()) {
        // The documents are right, but no name tells what is in them.
        result.verdict = verdict::unknownLetters;
    }
}

/// Whether files that have names of documents may be these documents, to the byte, which can be
/// told only when they are written: an earlier run has not reported them, or another one goes on
/// beside this one.
bool mayBeThere(const SplitPlan &plan)
{
    return !plan.isDryRun && (plan.isResuming || plan.existing == ExistingFiles::Rename);
}

/// Returns false when names are taken.
bool publishAs(const SplitPlan &plan, StagingFolder &staging, const Naming &name,
               FileResult &result)
{
    if (mayBeThere(plan))
        result.documents = name([&staging](int index, const QString &path) {
            return staging.isPublished(index, path);
        });
    QStringList paths;
    for (int index = 0; index < result.documents.size(); ++index) {
        result.documents[index].bytes = QFileInfo(staging.pathOf(index)).size();
        paths.append(result.documents[index].file);
    }
    holdBackSignals();
    return staging.publish(paths, plan.existing == ExistingFiles::Overwrite);
}

void publish(const SplitPlan &plan, pdf::Document &document, const UnchangedInput &input,
             int workers, const Naming &name, FileResult &result)
{
    const QString folder = QFileInfo(result.documents.first().file).path();
    StagingFolder staging(folder);
    const int count = static_cast<int>(result.documents.size());
    bool isDamaged = false;
    for (int first = 0, end = 0; first < count; first = end) {
        end = endOfPart(result.documents, first);
        writePart(plan, document, result.documents, first, end, staging, workers, isDamaged);
    }
    if (isDamaged && result.verdict != verdict::damaged && !setDamaged(plan, result, {brokenTable}))
        return;
    // No name before its bytes: in place of an older document would else be nothing.
    if (plan.isSynchronising)
        syncFileSystemOf(folder);
    input.check();
    constexpr int attempts = 20;
    for (int i = 1; !publishAs(plan, staging, name, result); ++i) {
        // Another run took a name that was free a moment ago.
        if (plan.existing == ExistingFiles::Fail || i == attempts)
            throw Error(ExitCode::OutputUnwritable, "documents of their names exist already");
    }
    if (plan.isSynchronising) {
        syncFolder(folder);
        syncFolder(plan.outputFolder);
    }
}

void split(const SplitPlan &plan, const FileJob &job, const UnchangedInput &input,
           FileProgress &progress, FileResult &result)
{
    pdf::Document document(QFile::encodeName(job.input).toStdString());
    input.checkOpened(document.file().descriptor());
    result.pages = document.pages().count();
    progress.pageCount = result.pages;
    if (result.pages == 0)
        throw Error(ExitCode::InputUnreadable, "has no pages");
    if (!document.mayAssemble())
        throw Error(ExitCode::Forbidden, "its permissions forbid taking pages out");
    constexpr int pagesPerWorker = 10; // a further process costs as much as about ten pages
    const int workers = std::clamp(result.pages / pagesPerWorker, 1, job.workers);
    const PageTexts texts = readPageTexts(document, plan.query, workers, progress.pagesDone);
    const SplitDecision decision = decideSplit(texts.texts, plan.methodIndex);
    if (!areAllPagesOnce(decision.rangeList, result.pages))
        throw Error(ExitCode::InputUnreadable, "the documents do not hold every page once");
    setVerdict(result, texts);
    const QStringList damage = damageOf(document, texts);
    if (!damage.isEmpty() && !setDamaged(plan, result, damage))
        return;
    const auto name = [&](const IsWritten &isWritten) {
        return nameDocuments(plan, job.input, decision, job.taken, isWritten);
    };
    result.documents =
        name(mayBeThere(plan) ? [](int, const QString &) { return true; } : IsWritten());
    if (!plan.isDryRun)
        publish(plan, document, input, workers, name, result);
}

/// As split(), but what goes wrong with a file that is just being written to is put down to that.
void splitUnchanged(const SplitPlan &plan, const FileJob &job, FileProgress &progress,
                    FileResult &result)
{
    const UnchangedInput input(QFile::encodeName(job.input).toStdString());
    try {
        split(plan, job, input, progress, result);
    } catch (...) {
        input.check();
        throw;
    }
    // What is published was checked before it was; later changes are no matter of it.
    if (result.documents.isEmpty() || plan.isDryRun)
        input.check();
}

} // namespace

FileResult splitFile(const SplitPlan &plan, const FileJob &job, FileProgress &progress)
{
    QElapsedTimer timer;
    timer.start();
    FileResult result = beginResult(job.input);
    const auto fail = [&](ExitCode code, const char *cause) {
        const int pages = result.pages;
        result = failedResult(job.input, code, QString::fromLocal8Bit(cause));
        result.pages = pages;
    };
    try {
        splitUnchanged(plan, job, progress, result);
    } catch (const pdf::NoProcess &error) {
        progress.lacksProcess = true;
        fail(error.exitCode(), error.what());
    } catch (const Error &error) {
        fail(error.exitCode(), error.what());
    } catch (const std::bad_alloc &) {
        fail(ExitCode::InputUnreadable, "needs too much memory");
    } catch (const std::exception &error) {
        fail(ExitCode::InputUnreadable, error.what());
    }
    constexpr double milliseconds = 1e3;
    result.seconds = static_cast<double>(timer.elapsed()) / milliseconds;
    return result;
}
