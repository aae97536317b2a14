// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/documentnames.h"

#include "batch/nametemplate.h"
#include "pdf/error.h"
#include "split/outputname.h"

#include <QFile>
#include <QFileInfo>

#include <optional>

namespace {

class Namer
{
public:
    Namer(const SplitPlan &splitPlan, const QString &inputFile, const TakenPaths &takenPaths,
          const IsWritten &isDocumentWritten)
        : plan(splitPlan), input(inputFile), taken(takenPaths), isWritten(isDocumentWritten),
          baseName(QFileInfo(inputFile).baseName())
    {
        if (!plan.nameTemplate.isEmpty())
            pattern.emplace(plan.nameTemplate);
    }

    QString path(int number, const QString &text, const QString &range)
    {
        OutputDocument document = {number, text, baseName, range, 1};
        const QString wanted = pathOf(document);
        // A pattern may give thousands of documents the same name: go on where the last one ended.
        int &lastCopy = lastCopies[wanted];
        const auto pathOfCopy = [&](int) {
            document.copy = ++lastCopy;
            return pathOf(document);
        };
        const QString result = firstFreePath(
            pathOfCopy, [&](const QString &candidate) { return isFree(candidate, number); });
        check(result, number);
        own.insert(result);
        return result;
    }

private:
    [[nodiscard]] QString pathOf(const OutputDocument &document) const
    {
        if (!pattern)
            return outputPath(plan.outputFolder, document, plan.methodIndex);
        return documentsFolder(plan.outputFolder, baseName) + QLatin1Char('/') +
               pattern->fileName(document);
    }

    [[nodiscard]] bool isFree(const QString &candidate, int number) const
    {
        return !own.contains(candidate) && taken.value(candidate, input) == input &&
               (plan.existing != ExistingFiles::Rename || !isInTheWay(candidate, number));
    }

    /// Whether there is a file, and not because the document was written before.
    [[nodiscard]] bool isInTheWay(const QString &path, int number) const
    {
        return QFile::exists(path) && (!isWritten || isRead(path) || !isWritten(number - 1, path));
    }

    [[nodiscard]] bool isRead(const QString &path) const
    {
        const auto identity = pdf::fileIdentity(QFile::encodeName(path).toStdString());
        return identity && plan.filesRead.count(*identity) != 0;
    }

    void check(const QString &path, int number) const
    {
        const std::string bytes = QFile::encodeName(path).toStdString();
        const auto refuse = [&bytes](const char *cause) {
            throw pdf::Error(pdf::ExitCode::OutputUnwritable, bytes + ": " + cause);
        };
        if (bytes.size() - bytes.rfind('/') - 1 > maxFileNameBytes)
            refuse("is too long a name");
        if (plan.existing == ExistingFiles::Fail && isInTheWay(path, number))
            refuse("exists already");
        if (isRead(path))
            refuse("is itself a file that is read");
    }

    const SplitPlan &plan;
    const QString &input;
    const TakenPaths &taken;
    const IsWritten &isWritten;
    QString baseName;
    std::optional<NameTemplate> pattern;
    QSet<QString> own;
    QHash<QString, int> lastCopies;
};

} // namespace

QList<DocumentResult> nameDocuments(const SplitPlan &plan, const QString &input,
                                    const SplitDecision &decision, const TakenPaths &taken,
                                    const IsWritten &isWritten)
{
    Namer namer(plan, input, taken, isWritten);
    QList<DocumentResult> documents;
    for (int k = 0; k < decision.rangeList.size(); ++k) {
        const QString &range = decision.rangeList[k];
        const QString &text = decision.textList[k];
        documents.append({range, text, namer.path(k + 1, text, range), 0});
    }
    return documents;
}
