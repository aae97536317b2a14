// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "tests/support/toolrunner.h"

#include <QJsonObject>
#include <QList>
#include <QProcess>

#include <memory>

/// Runs sendrivo-batch, which stands beside the test program.
[[nodiscard]] ToolResult batch(const QStringList &arguments);

/// Starts sendrivo-batch beside the test, in a process group of its own.
[[nodiscard]] std::unique_ptr<QProcess> startBatch(const QStringList &arguments);

/// One JSON object a line, as reports and --json have them.
[[nodiscard]] QList<QJsonObject> jsonLines(const QByteArray &bytes);
