// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// Prints a line on standard output.
/// Throws pdf::Error(OutputUnwritable) when it cannot be written.
void printLine(const QString &line);

/// Prints "sendrivo-batch: LINE" on standard error, control characters as blanks.
void complain(const QString &line);
