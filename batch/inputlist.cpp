// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/inputlist.h"

#include "pdf/error.h"
#include "split/outputname.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <cstdio>
#include <unistd.h>

namespace {

QStringList readList(const QString &source)
{
    QFile file(source);
    const bool isOpen = source == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                     : file.open(QIODevice::ReadOnly);
    if (!isOpen)
        throw pdf::Error(pdf::ExitCode::Usage,
                         (source + QLatin1String(": ") + file.errorString()).toStdString());
    const QByteArray bytes = file.readAll();
    QStringList names;
    for (const QByteArray &name : bytes.split(bytes.contains('\0') ? '\0' : '\n')) {
        if (!name.isEmpty())
            names.append(decodedName(name));
    }
    return names;
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

[[noreturn]] void refuse(const QString &path, const char *cause)
{
    throw pdf::Error(pdf::ExitCode::OutputUnwritable, path.toStdString() + ": " + cause);
}

bool isWritable(const QString &folder)
{
    return ::access(QFile::encodeName(folder).constData(), W_OK | X_OK) == 0;
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

QString decodedName(const QByteArray &bytes)
{
    QString name = QFile::decodeName(bytes);
    if (QFile::encodeName(name) != bytes)
        throw pdf::Error(pdf::ExitCode::Usage, bytes.toStdString() + ": is not valid UTF-8");
    return name;
}

QStringList collectInputs(const BatchOptions &options)
{
    QStringList names;
    for (const QString &input : options.inputs)
        names += input == QLatin1String("-") ? readList(input) : QStringList(input);
    if (!options.filesFrom.isEmpty())
        names += readList(options.filesFrom);
    QStringList inputs;
    QSet<QString> seen;
    for (const QString &name : std::as_const(names)) {
        const QString path = inputPath(name);
        if (!seen.contains(path))
            inputs.append(path);
        seen.insert(path);
    }
    return inputs;
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

void checkFolders(const QString &outputFolder, const std::vector<InputGroup> &groups)
{
    if (!QFileInfo(outputFolder).isDir())
        refuse(outputFolder, "is not an existing folder");
    if (!isWritable(outputFolder))
        refuse(outputFolder, "cannot be written to");
    for (const InputGroup &group : groups) {
        const QString folder =
            documentsFolder(outputFolder, QFileInfo(group.inputs.first()).baseName());
        const QFileInfo existing(folder);
        if (existing.exists() && !existing.isDir())
            refuse(folder, "is a file where a folder is needed");
        if (existing.exists() && !isWritable(folder))
            refuse(folder, "cannot be written to");
    }
}
