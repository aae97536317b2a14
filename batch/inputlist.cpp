// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/inputlist.h"

#include "batch/filename.h"
#include "pdf/error.h"
#include "split/outputname.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

/// What a list begins with when a Windows program wrote it.
constexpr const char *byteOrderMark = "\xef\xbb\xbf";

[[noreturn]] void refuseList(const QString &source, const QString &cause)
{
    throw pdf::Error(pdf::ExitCode::Usage, (source + QLatin1String(": ") + cause).toStdString());
}

void readList(const QString &source, QStringList &names, QStringList &undecodable)
{
    QFile file(source);
    const bool isOpen = source == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                     : file.open(QIODevice::ReadOnly);
    if (!isOpen)
        refuseList(source, file.errorString());
    QByteArray bytes = file.readAll();
    if (bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff"))
        refuseList(source, QStringLiteral("is UTF-16, lists are UTF-8"));
    if (bytes.startsWith(byteOrderMark))
        bytes.remove(0, static_cast<qsizetype>(qstrlen(byteOrderMark)));
    const bool hasLines = !bytes.contains('\0');
    for (QByteArray &entry : bytes.split(hasLines ? '\n' : '\0')) {
        if (hasLines && entry.endsWith('\r'))
            entry.chop(1);
        const FileName name(entry);
        if (!entry.isEmpty())
            (name.isText ? names : undecodable).append(name.text);
    }
}

/// The absolute path of the file that the system opens under the name. The folder is the real one,
/// as ".." behind a link leads elsewhere than it seems to; the file's own name stays as it is, for
/// its documents are named after it.
QString inputPath(const QString &name)
{
    const qsizetype slash = name.lastIndexOf(QLatin1Char('/'));
    const QString own = name.mid(slash + 1);
    const QString folder =
        QFileInfo(slash < 0 ? QStringLiteral(".") : name.left(slash + 1)).canonicalFilePath();
    if (folder.isEmpty()) // there is no such folder
        return QDir::isAbsolutePath(name) ? name : QDir::currentPath() + QLatin1Char('/') + name;
    return folder.endsWith(QLatin1Char('/')) ? folder + own : folder + QLatin1Char('/') + own;
}

bool isWritable(const QString &folder)
{
    return ::access(QFile::encodeName(folder).constData(), W_OK | X_OK) == 0;
}

/// Why documents cannot get into the folder, which need not exist; empty when they can.
QString troubleWith(const QFileInfo &folder)
{
    if (folder.exists() && !folder.isDir())
        return QStringLiteral("is a file where a folder is needed");
    if (folder.exists() && !isWritable(folder.filePath()))
        return QStringLiteral("cannot be written to");
    return folder.exists() || !folder.isSymLink() ? QString() : QStringLiteral("leads nowhere");
}

/// Equal for inputs whose documents may get into the same folder: where case makes no difference,
/// or through links.
QString sharedFolder(const QString &outputFolder, const QString &baseName)
{
    const QString folder = documentsFolder(outputFolder, baseName);
    const QString key = folderKey(folder);
    return key == folder ? nameKey(folder) : key;
}

} // namespace

InputFiles collectInputs(const BatchOptions &options)
{
    QStringList names;
    InputFiles result;
    result.undecodable = options.undecodableInputs;
    for (const QString &input : options.inputs) {
        if (input == QLatin1String("-"))
            readList(input, names, result.undecodable);
        else
            names.append(input);
    }
    if (!options.filesFrom.isEmpty())
        readList(options.filesFrom, names, result.undecodable);
    if (names.isEmpty() && result.undecodable.isEmpty())
        throw pdf::Error(pdf::ExitCode::Usage, "no files are given: the list is empty");
    QSet<QString> seen;
    for (const QString &name : std::as_const(names)) {
        const QString path = inputPath(name);
        if (!seen.contains(path))
            result.paths.append(path);
        seen.insert(path);
    }
    return result;
}

std::vector<InputGroup> groupInputs(const QString &outputFolder, const QStringList &inputs)
{
    std::vector<InputGroup> groups;
    QHash<QString, std::size_t> groupOfName;
    QHash<QString, std::size_t> groupOfFolder;
    for (const QString &input : inputs) {
        const QString name = QFileInfo(input).baseName();
        auto found = groupOfName.constFind(name);
        if (found == groupOfName.constEnd()) {
            const QString folder = sharedFolder(outputFolder, name);
            if (!groupOfFolder.contains(folder)) {
                groupOfFolder.insert(folder, groups.size());
                groups.emplace_back();
            }
            found = groupOfName.insert(name, groupOfFolder[folder]);
        }
        groups[*found].inputs.append(input);
    }
    return groups;
}

void checkOutputFolder(const QString &outputFolder)
{
    const QFileInfo folder(outputFolder);
    const QString trouble =
        folder.isDir() ? troubleWith(folder) : QStringLiteral("is not an existing folder");
    if (!trouble.isEmpty())
        throw pdf::Error(pdf::ExitCode::OutputUnwritable,
                         (outputFolder + QLatin1String(": ") + trouble).toStdString());
}

QList<FileResult> takeOutUnwritable(const QString &outputFolder, std::vector<InputGroup> &groups)
{
    QList<FileResult> failures;
    takeOut(groups, [&](const QString &input) {
        const QString folder = documentsFolder(outputFolder, QFileInfo(input).baseName());
        const QString trouble = troubleWith(QFileInfo(folder));
        if (!trouble.isEmpty())
            failures.append(failedResult(input, pdf::ExitCode::OutputUnwritable,
                                         folder + QLatin1String(": ") + trouble));
        return !trouble.isEmpty();
    });
    return failures;
}

void takeOut(std::vector<InputGroup> &groups,
             const std::function<bool(const QString &input)> &isTaken)
{
    for (InputGroup &group : groups)
        group.inputs.removeIf(isTaken);
    groups.erase(std::remove_if(groups.begin(), groups.end(),
                                [](const InputGroup &group) { return group.inputs.isEmpty(); }),
                 groups.end());
}
