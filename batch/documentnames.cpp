// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/documentnames.h"

#include "batch/nametemplate.h"
#include "pdf/error.h"
#include "pdf/layout/layoutfile.h"
#include "split/outputname.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <optional>

namespace {

class Namer
{
public:
    Namer(const SplitPlan &splitPlan, const QString &inputFile, const TakenPlaces &takenPlaces,
          const IsWritten &isDocumentWritten)
        : plan(splitPlan), input(inputFile), taken(takenPlaces), isWritten(isDocumentWritten),
          baseName(QFileInfo(inputFile).baseName()),
          folder(documentsFolder(plan.outputFolder, baseName)), keyOfFolder(folderKey(folder)),
          maxNameBytes(longestFileName(folder))
    {
        if (!plan.nameTemplate.isEmpty())
            pattern.emplace(plan.nameTemplate);
    }

    QString path(int number, const QString &text, const QString &range)
    {
        // The window names documents after the text as it stands in a layout file, with "<" as
        // "&lt;", and so do we where the user has not said otherwise.
        const QString shown =
            pattern ? text : QString::fromStdString(pdf::markupText(text.toStdString()));
        OutputDocument document = {number, shown, baseName, range, 1};
        // A pattern may give thousands of documents the same name: go on where the last one ended.
        int &lastCopy = lastCopies[nameKey(fileName(document))];
        const auto pathOfCopy = [&](int) {
            document.copy = ++lastCopy;
            return folder + QLatin1Char('/') + fileName(document);
        };
        QString result = firstFreePath(
            pathOfCopy, [&](const QString &candidate) { return isFree(candidate, number); });
        check(result, number);
        own.insert(keyOf(result));
        return result;
    }

private:
    [[nodiscard]] QString fileName(const OutputDocument &document) const
    {
        return pattern ? pattern->fileName(document, maxNameBytes)
                       : outputFileName(document, plan.methodIndex, maxNameBytes);
    }

    [[nodiscard]] QString keyOf(const QString &path) const
    {
        return placeKey(keyOfFolder, QFileInfo(path).fileName());
    }

    [[nodiscard]] bool isFree(const QString &candidate, int number) const
    {
        const QString key = keyOf(candidate);
        return !own.contains(key) && taken.value(key, input) == input &&
               (plan.existing != ExistingFiles::Rename || !isInTheWay(candidate, number));
    }

    /// Whether there is a file, and not because the document was written before.
    [[nodiscard]] bool isInTheWay(const QString &path, int number) const
    {
        const QFileInfo file(path);
        return (file.exists() || file.isSymLink()) &&
               (!isWritten || isRead(path) || !isWritten(number - 1, path));
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
        if (bytes.size() - bytes.rfind('/') - 1 > static_cast<std::size_t>(maxNameBytes))
            refuse("is too long a name");
        if (plan.existing == ExistingFiles::Fail && isInTheWay(path, number))
            refuse("exists already");
        if (isRead(path))
            refuse("is itself a file that is read");
    }

    const SplitPlan &plan;
    const QString &input;
    const TakenPlaces &taken;
    const IsWritten &isWritten;
    QString baseName;
    QString folder;
    QString keyOfFolder;
    int maxNameBytes;
    std::optional<NameTemplate> pattern;
    QSet<QString> own;
    QHash<QString, int> lastCopies;
};

} // namespace

QString folderKey(const QString &folder)
{
    const auto identity = pdf::fileIdentity(QFile::encodeName(folder).toStdString());
    return identity ? QStringLiteral("%1:%2").arg(identity->first).arg(identity->second) : folder;
}

QString nameKey(const QString &name)
{
    QString key = name.normalized(QString::NormalizationForm_D).toCaseFolded();
    const auto isInvisible = [](QChar c) { return c.category() == QChar::Other_Format; };
    key.erase(std::remove_if(key.begin(), key.end(), isInvisible), key.end());
    return key.normalized(QString::NormalizationForm_D);
}

QString placeKey(const QString &keyOfFolder, const QString &name)
{
    return keyOfFolder + QLatin1Char('/') + nameKey(name);
}

void addPlaces(TakenPlaces &taken, const FileResult &result)
{
    if (result.documents.isEmpty())
        return;
    const QString key = folderKey(QFileInfo(result.documents.first().file).path());
    for (const DocumentResult &document : result.documents)
        taken.insert(placeKey(key, QFileInfo(document.file).fileName()), result.input);
}

QList<DocumentResult> nameDocuments(const SplitPlan &plan, const QString &input,
                                    const SplitDecision &decision, const TakenPlaces &taken,
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
