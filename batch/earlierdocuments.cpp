// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/earlierdocuments.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

void EarlierDocuments::add(const FileResult &result, bool isSameRequest)
{
    if (result.documents.isEmpty())
        return;
    if (!inputs.contains(result.input))
        sharing.insert(QFileInfo(result.input).baseName(), result.input);
    Documents &documents = inputs[result.input];
    for (const DocumentResult &document : result.documents)
        documents.insert(document.file, {document.bytes, isSameRequest});
}

bool EarlierDocuments::isOfAnotherInput(const QString &path, const QString &input) const
{
    const QStringList others = sharing.values(QFileInfo(input).baseName());
    return std::any_of(others.begin(), others.end(), [&](const QString &other) {
        return other != input && inputs[other].contains(path);
    });
}

QStringList EarlierDocuments::replaceBy(const FileResult &result)
{
    QStringList removed;
    // An input that failed has lost nothing.
    if (result.documents.isEmpty())
        return removed;
    QSet<QString> written;
    for (const DocumentResult &document : result.documents)
        written.insert(document.file);
    Documents &documents = inputs[result.input];
    for (auto earlier = documents.begin(); earlier != documents.end();) {
        const QString &path = earlier.key();
        if (!earlier->isSameRequest || written.contains(path)) {
            ++earlier;
            continue;
        }
        const QFileInfo file(path);
        if (file.isFile() && !file.isSymLink() && file.size() == earlier->bytes &&
            !isOfAnotherInput(path, result.input) && QFile::remove(path))
            removed.append(path);
        earlier = documents.erase(earlier);
    }
    add(result, true);
    return removed;
}
