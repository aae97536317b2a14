// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/batchinputs.h"

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

void BatchInputs::add(const QString &path)
{
    ++added;
    const auto identity = identityOf(path);
    if (!identity)
        return;
    identities.insert(*identity);
    paths.insert(QFileInfo(path).canonicalFilePath());
}

void BatchInputs::clear()
{
    *this = BatchInputs();
}

bool BatchInputs::contains(const QString &path) const
{
    const auto identity = identityOf(path);
    return identity &&
           (identities.contains(*identity) || paths.contains(QFileInfo(path).canonicalFilePath()));
}
