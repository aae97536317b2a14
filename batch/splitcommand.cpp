// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/splitcommand.h"

#include "batch/inputlist.h"
#include "batch/nametemplate.h"
#include "batch/output.h"
#include "batch/progressline.h"
#include "batch/report.h"
#include "options/outputoptions.h"
#include "pdf/error.h"
#include "rules/rulestore.h"
#include "split/outputname.h"
#include "split/plaintext.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSet>
#include <QSettings>

#include <csignal>
#include <optional>

namespace {

using pdf::ExitCode;

[[noreturn]] void refuse(const QString &cause)
{
    throw pdf::Error(ExitCode::Usage, cause.toStdString());
}

TextQuery makeQuery(const BatchOptions &options)
{
    TextQuery query;
    query.tolerancePx = options.tolerancePx;
    query.match.setPattern(options.match);
    query.match.setPatternOptions(QRegularExpression::UseUnicodePropertiesOption);
    if (!query.match.isValid())
        refuse(QStringLiteral("--match: %1").arg(query.match.errorString()));
    query.match.optimize();
    if (options.position) {
        query.left = options.position->first;
        query.top = options.position->second;
        return query;
    }
    const QSettings settings(options.settingsFile, QSettings::IniFormat);
    if (!isRuleNameTaken(settings, options.ruleName))
        refuse(
            QStringLiteral("%1: has no rule \"%2\"").arg(options.settingsFile, options.ruleName));
    const Subtext rule = readRule(settings, options.ruleName);
    query.left = rule.left;
    query.top = rule.top;
    return query;
}

/// Size and time of last change. What the file says itself must not get into a report: there may be
/// a password in it.
QString stateOf(const QString &path)
{
    const QFileInfo file(path);
    return QString::number(file.size()) + QLatin1Char(' ') +
           file.lastModified().toUTC().toString(Qt::ISODateWithMs);
}

pdf::DocumentOptions makeDocumentOptions(const QString &settingsFile)
{
    // Without this a mistyped name would give documents without their password.
    const QFileInfo file(settingsFile);
    if (!file.isFile() || !file.isReadable())
        refuse(settingsFile + QLatin1String(": cannot be read for --output-options"));
    const QSettings settings(settingsFile, QSettings::IniFormat);
    const OutputOptions stored = readOutputOptions(settings);
    if (!stored.fault.isEmpty())
        refuse(settingsFile + QLatin1String(": ") + stored.fault);
    pdf::DocumentOptions options;
    for (auto field = stored.information.begin(); field != stored.information.end(); ++field)
        options.information.emplace(field.key().toStdString(), field.value().toStdString());
    options.userPassword = stored.userPassword.toStdString();
    options.ownerPassword = stored.ownerPassword.toStdString();
    options.mayPrint = stored.mayPrint;
    options.mayModify = stored.mayModify;
    options.mayCopy = stored.mayCopy;
    options.mayAnnotate = stored.mayAnnotate;
    if (stored.isPdfA && options.isEncrypting())
        refuse(settingsFile + QLatin1String(": a password and PDF/A exclude each other"));
    for (const QString &remark : stored.remarks)
        complain(settingsFile + QLatin1String(": ") + remark);
    return options;
}

SplitPlan makePlan(const BatchOptions &options)
{
    SplitPlan plan;
    plan.query = makeQuery(options);
    plan.ruleName = options.ruleName;
    plan.methodIndex = options.methodIndex;
    plan.nameTemplate = options.nameTemplate;
    if (!plan.nameTemplate.isEmpty())
        const NameTemplate checked(plan.nameTemplate);
    // One folder has one spelling, for reports tell runs apart by it.
    const QFileInfo folder(options.outputFolder);
    plan.outputFolder = folder.exists() ? folder.canonicalFilePath() : folder.absoluteFilePath();
    plan.existing = options.existing;
    plan.damaged = options.damaged;
    plan.isDryRun = options.isDryRun;
    plan.isSynchronising = options.isSynchronising;
    plan.isResuming = options.isResuming;
    if (options.usesOutputOptions) {
        plan.documentOptionsState = stateOf(options.settingsFile);
        plan.documentOptions = makeDocumentOptions(options.settingsFile);
    }
    return plan;
}

std::set<pdf::FileIdentity> identities(const QStringList &paths)
{
    std::set<pdf::FileIdentity> result;
    for (const QString &path : paths) {
        if (const auto identity = pdf::fileIdentity(QFile::encodeName(path).toStdString()))
            result.insert(*identity);
    }
    return result;
}

QString summary(const FileResult &result, const SplitPlan &plan)
{
    const auto count = [](qsizetype number, const char *what) {
        return QStringLiteral("%1 %2%3").arg(number).arg(what, number == 1 ? "" : "s");
    };
    return QStringLiteral("%1: %2 from %3 in %4")
        .arg(result.input, count(result.documents.size(), "document"), count(result.pages, "page"),
             documentsFolder(plan.outputFolder, QFileInfo(result.input).baseName()));
}

/// Prints and reports what became of the inputs.
class Results
{
public:
    Results(const BatchOptions &batchOptions, const SplitPlan &splitPlan)
        : options(batchOptions), plan(splitPlan), progress(!options.isQuiet)
    {
        // What a dry run would skip is in the report, too.
        if (!options.reportFile.isEmpty() && (!plan.isDryRun || options.isResuming))
            report.emplace(options.reportFile, plan, options.isResuming);
    }

    /// Takes the inputs that are done already out of the groups, and lets the others know the names
    /// that the report tells of.
    void skipDone(std::vector<InputGroup> &groups)
    {
        if (!report || !options.isResuming)
            return;
        for (InputGroup &group : groups) {
            QSet<QString> folders;
            for (const QString &input : std::as_const(group.inputs))
                folders.insert(
                    folderKey(documentsFolder(plan.outputFolder, QFileInfo(input).baseName())));
            for (const QString &folder : std::as_const(folders))
                group.taken.insert(report->placesByFolder().value(folder));
        }
        takeOut(groups, [this](const QString &input) {
            const bool isDone = report->isDoneBefore(input);
            if (isDone) {
                ++skipped;
                exits.add(ExitCode::Done);
            }
            return isDone;
        });
    }

    void add(const FileResult &result)
    {
        progress.clear();
        exits.add(result.exitCode);
        ++done;
        for (const QString &complaint : result.complaints)
            complain(result.input + QLatin1String(": ") + complaint);
        if (result.verdict != verdict::done)
            complain(result.input + QLatin1String(": ") + remark(result));
        const QStringList removed =
            report && !plan.isDryRun ? report->append(result) : QStringList();
        for (const QString &path : removed)
            complain(result.input + QLatin1String(": has no such document any more, removed: ") +
                     path);
        print(result);
    }

    void show(const RunState &state) { progress.show(state); }

    void stopped(int files)
    {
        progress.clear();
        complain(QStringLiteral("stopped: %1 of %2 files done, nothing left of the others")
                     .arg(done + skipped)
                     .arg(files + skipped));
    }

    void end()
    {
        progress.clear();
        if (skipped > 0 && !options.isQuiet)
            complain(QStringLiteral("files done before: %1").arg(skipped));
    }

    [[nodiscard]] ExitCode exitCode() const { return exits.exitCode(); }

private:
    static QString remark(const FileResult &result)
    {
        if (!result.cause.isEmpty())
            return result.cause;
        if (result.verdict == verdict::pagesWithoutTextLayer)
            return result.verdict + QLatin1String(": ") + result.pagesWithoutText;
        if (result.verdict == verdict::unknownLetters)
            return result.verdict + QLatin1String(" on pages ") + result.pagesWithUnknownLetters;
        return result.verdict;
    }

    void print(const FileResult &result) const
    {
        if (options.isJson)
            printLine(QString::fromUtf8(
                QJsonDocument(reportEntry(result, plan)).toJson(QJsonDocument::Compact)));
        else if (plan.isDryRun)
            printPlanned(result);
        else if (!options.isQuiet && !result.documents.isEmpty())
            printLine(summary(result, plan));
    }

    static void printPlanned(const FileResult &result)
    {
        for (const DocumentResult &document : result.documents)
            printLine(
                QStringList{document.range, withoutControlCharacters(document.text), document.file}
                    .join(u'\t'));
    }

    const BatchOptions &options;
    const SplitPlan &plan;
    ProgressLine progress;
    std::optional<Report> report;
    ExitSummary exits;
    int done = 0;
    int skipped = 0;
};

} // namespace

void ExitSummary::add(ExitCode code)
{
    switch (code) {
    case ExitCode::Done:
        ++good;
        break;
    case ExitCode::DoneInPart:
        ++inPart;
        break;
    case ExitCode::OutputUnwritable:
        ++unwritable;
        break;
    case ExitCode::Forbidden:
        ++forbidden;
        break;
    case ExitCode::Usage:
    case ExitCode::InputUnreadable:
        ++unreadable;
        break;
    }
}

ExitCode ExitSummary::exitCode() const
{
    // A full disk is about the destination and not about any input.
    if (unwritable > 0)
        return ExitCode::OutputUnwritable;
    if (unreadable == 0 && forbidden == 0)
        return inPart > 0 ? ExitCode::DoneInPart : ExitCode::Done;
    if (good > 0 || inPart > 0)
        return ExitCode::DoneInPart;
    return unreadable == 0 ? ExitCode::Forbidden : ExitCode::InputUnreadable;
}

ExitCode splitInputs(const BatchOptions &options)
{
    SplitPlan plan = makePlan(options);
    const InputFiles inputs = collectInputs(options);
    plan.filesRead =
        identities(inputs.paths + QStringList{options.settingsFile, options.filesFrom});
    std::vector<InputGroup> groups = groupInputs(plan.outputFolder, inputs.paths);
    checkOutputFolder(plan.outputFolder);
    Results results(options, plan);
    results.skipDone(groups);
    QList<FileResult> failures = takeOutUnwritable(plan.outputFolder, groups);
    for (const QString &name : inputs.undecodable)
        failures.append(failedResult(name, ExitCode::InputUnreadable,
                                     QStringLiteral("the name is not valid UTF-8")));
    int files = static_cast<int>(failures.size());
    for (const InputGroup &group : groups)
        files += static_cast<int>(group.inputs.size());
    RunListener listener;
    listener.fileDone = [&](const FileResult &result) { results.add(result); };
    listener.tick = [&](const RunState &state) { results.show(state); };
    const int jobs = options.jobs > 0 ? options.jobs : availableProcessors();
    // Who reads the results may go away, as "head" does; that is an error of the output then.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        for (const FileResult &failure : std::as_const(failures))
            results.add(failure);
        if (const int number = runGroups(plan, groups, jobs, listener)) {
            results.stopped(files);
            std::fflush(nullptr);
            std::raise(number);
        }
    } catch (...) {
        results.stopped(files);
        throw;
    }
    results.end();
    return results.exitCode();
}
