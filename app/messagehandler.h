// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QtGlobal>

/// Appends a message to the log as one line, "Debug: ...", "Warning: ..." or "Critical: ..."; an
/// information message leaves an empty line. A fatal message ends the program and leaves no line.
/// A message that cannot be written is lost. To be installed with qInstallMessageHandler().
void customMessageHandler(QtMsgType type, const QMessageLogContext &context,
                          const QString &message);
