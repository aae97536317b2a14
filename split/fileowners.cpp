// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/fileowners.h"

#include "split/inputstate.h"

#include <QFile>
#include <QFileInfo>

#include <optional>

namespace {

using Identity = std::pair<quint64, quint64>;

std::optional<Identity> identityOf(const QString &path)
{
    const auto state = inputState(QFile::encodeName(path).toStdString());
    return state ? std::make_optional(Identity(state->device, state->inode)) : std::nullopt;
}

} // namespace

void FileOwners::add(const QString &path, const QString &owner)
{
    ++added;
    const auto identity = identityOf(path);
    if (!identity)
        return;
    ownerOfIdentity.insert(*identity, owner);
    ownerOfPath.insert(QFileInfo(path).canonicalFilePath(), owner);
}

void FileOwners::clear()
{
    *this = FileOwners();
}

QString FileOwners::ownerOf(const QString &path) const
{
    const auto identity = identityOf(path);
    if (!identity)
        return {};
    const auto known = ownerOfIdentity.constFind(*identity);
    // A file that was replaced has kept its place.
    return known != ownerOfIdentity.cend() ? *known
                                           : ownerOfPath.value(QFileInfo(path).canonicalFilePath());
}
