// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/stagingfolder.h"

#include "batch/stagingsweep.h"
#include "pdf/error.h"
#include "system/moving.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool haveSameBytes(const QString &path, const QString &otherPath)
{
    constexpr qint64 chunk = 1 << 20;
    QFile first(path);
    QFile second(otherPath);
    if (!first.open(QIODevice::ReadOnly) || !second.open(QIODevice::ReadOnly) ||
        first.size() != second.size())
        return false;
    while (!first.atEnd()) {
        const QByteArray bytes = first.read(chunk);
        if (bytes.isEmpty() || bytes != second.read(chunk))
            return false;
    }
    return true;
}

} // namespace

StagingFolder::StagingFolder(const QString &folder) : parent(folder)
{
    // Other runs get in the way only for moments, a link that leads nowhere does for good.
    constexpr int attempts = 100;
    for (int i = 1; !create(); ++i) {
        if (i == attempts)
            fail(parent);
    }
    struct stat status = {};
    if (::fstat(claim.get(), &status) == 0)
        removeAbandonedStaging(QFile::encodeName(parent).toStdString(), status.st_mtime);
}

/// False when another process removed the parent, which was still empty.
bool StagingFolder::create()
{
    const QByteArray folder = QFile::encodeName(parent);
    if (::mkdir(folder.constData(), 0777) == 0)
        isParentNew = true;
    else if (errno != EEXIST)
        fail(parent);
    hidden = folder + '/' + stagingNamePrefix().c_str() + "XXXXXX";
    const bool isMade = ::mkdtemp(hidden.data()) != nullptr;
    if (isMade)
        claim = claimFolder(hidden.toStdString(), stagingKind);
    if (claim.isOpen() && ::mkdirat(claim.get(), newDocuments, 0700) == 0)
        return true;
    const int cause = errno;
    if (isMade)
        removeClaimedFolder(claim, hidden.toStdString(), stagingKind);
    errno = cause;
    if (cause != ENOENT)
        fail(parent);
    return false;
}

StagingFolder::~StagingFolder()
{
    removeClaimedFolder(claim, hidden.toStdString(), stagingKind);
    // Only an empty folder can be removed this way.
    if (isParentNew)
        ::rmdir(QFile::encodeName(parent).constData());
}

void StagingFolder::fail(const QString &path)
{
    const std::string cause = std::strerror(errno);
    throw pdf::Error(pdf::ExitCode::OutputUnwritable, path.toStdString() + ": " + cause);
}

QString StagingFolder::pathOf(int index) const
{
    return QFile::decodeName(hidden) + QLatin1Char('/') + QLatin1String(newDocuments) +
           QLatin1Char('/') + QString::number(index + 1) + QLatin1String(".pdf");
}

QByteArray StagingFolder::keptPath(const QByteArray &path) const
{
    return hidden + '/' + oldDocuments + path.mid(path.lastIndexOf('/'));
}

bool StagingFolder::isPublished(int index, const QString &path) const
{
    return QFileInfo(path).isFile() && haveSameBytes(pathOf(index), path);
}

/// Gives the file a second name, so that it outlives being replaced; moves it where that is not
/// possible. It keeps its name here: that is where it belongs when this process is killed.
bool StagingFolder::keepFile(const QByteArray &path) const
{
    // What is kept is deleted in the end, and a folder that is in the way must not be.
    struct stat status = {};
    if (::lstat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    if (::mkdirat(claim.get(), oldDocuments, 0700) != 0 && errno != EEXIST)
        return false;
    const QByteArray kept = keptPath(path);
    return ::linkat(AT_FDCWD, path.constData(), AT_FDCWD, kept.constData(), 0) == 0 ||
           ::rename(path.constData(), kept.constData()) == 0;
}

bool StagingFolder::giveName(Step &step, bool mayReplace)
{
    const auto identity = pdf::fileIdentity(step.document.toStdString());
    step.isNamed = moveUnlessTaken({AT_FDCWD, step.document.toStdString()},
                                   {AT_FDCWD, step.target.toStdString()});
    if (!step.isNamed && errno == EEXIST && mayReplace) {
        // Names that look different to us may be the same to a file system.
        const auto there = pdf::fileIdentity(step.target.toStdString());
        errno = EEXIST;
        if (there && published.count(*there) != 0)
            return false;
        step.hasKept = keepFile(step.target);
        step.isNamed =
            step.hasKept && ::rename(step.document.constData(), step.target.constData()) == 0;
    }
    if (step.isNamed && identity)
        published.insert(*identity);
    return step.isNamed;
}

bool StagingFolder::publish(const QStringList &paths, bool mayReplace)
{
    std::vector<Step> steps;
    for (int index = 0; index < paths.size(); ++index) {
        if (!mayReplace && isPublished(index, paths[index]))
            continue;
        steps.push_back({QFile::encodeName(pathOf(index)), QFile::encodeName(paths[index])});
        if (giveName(steps.back(), mayReplace))
            continue;
        const int cause = errno;
        takeBack(steps);
        if (cause == EEXIST && !mayReplace)
            return false;
        errno = cause;
        fail(paths[index]);
    }
    return true;
}

void StagingFolder::takeBack(const std::vector<Step> &steps) const
{
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        if (step->hasKept)
            ::rename(keptPath(step->target).constData(), step->target.constData());
        else if (step->isNamed)
            ::rename(step->target.constData(), step->document.constData());
    }
}

bool clearStaging(const QString &folder)
{
    const std::string path = QFile::encodeName(folder).toStdString();
    removeAbandonedStaging(path, std::nullopt);
    return hasClaimedFolder(path, stagingKind);
}
