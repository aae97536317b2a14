// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

/// Splits inputs with the window and with sendrivo-batch, which writes into `output`, by a stored
/// rule and a method index. Gives what differs, empty when nothing does. Equal bytes show equal
/// pages; encryption gives other bytes each time, so encrypted documents are compared by what
/// their pages show.
[[nodiscard]] QString differenceFromWindow(const QStringList &inputs, const QString &rule,
                                           int method, const QString &output);
