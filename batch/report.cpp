// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/report.h"

#include "batch/durability.h"
#include "pdf/error.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// What was asked for, as far as documents depend on it.
QJsonObject request(const SplitPlan &plan)
{
    return {{"rule", plan.ruleName},
            {"position", QJsonArray{plan.query.left, plan.query.top}},
            {"tolerance", plan.query.tolerancePx},
            {"match", plan.query.match.pattern()},
            {"method", plan.methodIndex + 1},
            {"name", plan.nameTemplate},
            {"outputOptions", plan.documentOptionsState},
            {"output", plan.outputFolder}};
}

bool isSameRequest(const QJsonObject &entry, const QJsonObject &wanted)
{
    for (auto item = wanted.begin(); item != wanted.end(); ++item) {
        if (entry[item.key()] != item.value())
            return false;
    }
    return true;
}

/// Whether the file begins with an entry, also one that a killed run left unfinished. Other
/// programs write JSON, too, and a line of theirs may be all of a large file.
bool beginsAsReport(QFile &file)
{
    const QByteArray begin = R"({"cause":")"; // keys are sorted
    if (file.peek(begin.size()) != begin)
        return false;
    const QByteArray line = file.readLine();
    const QJsonObject entry = QJsonDocument::fromJson(line).object();
    if (entry.isEmpty())
        return !line.endsWith('\n');
    return !fromJson(entry).input.isEmpty() && entry.contains("pagesWithoutText");
}

} // namespace

QJsonObject reportEntry(const FileResult &result, const SplitPlan &plan)
{
    QJsonObject entry = toJson(result);
    const QJsonObject asked = request(plan);
    for (auto item = asked.begin(); item != asked.end(); ++item)
        entry.insert(item.key(), item.value());
    return entry;
}

Report::Report(const QString &reportPath, const SplitPlan &splitPlan, bool isResuming)
    : path(reportPath), plan(splitPlan)
{
    const int mode = plan.isDryRun ? O_RDONLY : O_RDWR | O_APPEND | O_CREAT;
    file = ::open(QFile::encodeName(path).constData(), mode | O_CLOEXEC, 0666);
    if (file < 0 && plan.isDryRun && errno == ENOENT)
        return;
    if (file < 0)
        fail();
    refuseOtherFiles();
    if (plan.isSynchronising && !plan.isDryRun)
        syncFolder(QFileInfo(path).absolutePath());
    if (isResuming)
        read();
    else if (QFileInfo(path).isFile() && ::ftruncate(file, 0) != 0)
        fail();
}

Report::~Report()
{
    if (file >= 0)
        ::close(file);
}

void Report::fail() const
{
    const std::string cause = std::strerror(errno);
    throw pdf::Error(pdf::ExitCode::OutputUnwritable, path.toStdString() + ": " + cause);
}

/// A mistyped name must not cost a document.
void Report::refuseOtherFiles() const
{
    if (!QFileInfo(path).isFile())
        return;
    const std::string name = QFile::encodeName(path).toStdString();
    const std::optional<pdf::FileIdentity> identity = pdf::fileIdentity(name);
    if (identity && plan.filesRead.count(*identity) != 0)
        throw pdf::Error(pdf::ExitCode::Usage, name + ": is read, it cannot be the report");
    QFile reader(path);
    if (!reader.open(QIODevice::ReadOnly))
        fail();
    if (reader.size() > 0 && !beginsAsReport(reader))
        throw pdf::Error(pdf::ExitCode::Usage, name + ": exists and is not a report");
}

void Report::read()
{
    QFile reader(path);
    if (!reader.open(QIODevice::ReadOnly))
        fail();
    const QJsonObject wanted = request(plan);
    QByteArray line;
    while (!reader.atEnd()) {
        line = reader.readLine();
        // A line that a killed run left unfinished says nothing.
        const QJsonObject entry = QJsonDocument::fromJson(line).object();
        const FileResult result = fromJson(entry);
        const bool isSame = isSameRequest(entry, wanted);
        earlierDocuments.add(result, isSame);
        if (!result.documents.isEmpty())
            addPlaces(places[folderKey(QFileInfo(result.documents.first().file).path())], result);
        if (result.input.isEmpty() || !isSame)
            continue;
        if (result.isDone())
            doneInputs.insert(result.input, result);
        else
            doneInputs.remove(result.input);
    }
    if (!plan.isDryRun && !line.isEmpty() && !line.endsWith('\n'))
        write("\n");
}

bool Report::isDoneBefore(const QString &input) const
{
    const auto found = doneInputs.constFind(input);
    if (found == doneInputs.constEnd())
        return false;
    const FileResult now = beginResult(input);
    const bool isThere = std::all_of(
        found->documents.begin(), found->documents.end(), [](const DocumentResult &document) {
            const QFileInfo written(document.file);
            return written.isFile() && written.size() == document.bytes;
        });
    return found->size == now.size && found->time == now.time && isThere;
}

QStringList Report::append(const FileResult &result)
{
    // First: what a killed run has not removed has to be met again.
    const QStringList removed = earlierDocuments.replaceBy(result);
    write(QJsonDocument(reportEntry(result, plan)).toJson(QJsonDocument::Compact) + '\n');
    // What is no file cannot be synchronised.
    if (plan.isSynchronising && ::fdatasync(file) != 0 && errno != EINVAL && errno != EROFS)
        fail();
    return removed;
}

/// One call for the whole line: the system appends it as one piece.
void Report::write(const QByteArray &line)
{
    const ssize_t written = ::write(file, line.constData(), static_cast<std::size_t>(line.size()));
    if (written >= 0 && written < line.size())
        errno = ENOSPC;
    if (written != line.size())
        fail();
}
