// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/batchoptions.h"

#include <QList>
#include <QStringList>

/// One option of the program; help text, man page and completion name the same ones.
struct OptionDescription
{
    QString name;       ///< "--rule"
    QStringList values; ///< what follows it, for example {"NAME"}
    QString help;
};

[[nodiscard]] const QList<OptionDescription> &optionDescriptions();

/// Reads the arguments (without the program's name). Values follow their option as arguments of
/// their own, the only one also as "--rule=NAME"; "--" ends the options.
/// Throws pdf::Error(Usage).
[[nodiscard]] BatchOptions parseCommandLine(const QByteArrayList &arguments);

/// What --help prints.
[[nodiscard]] QString helpText();
