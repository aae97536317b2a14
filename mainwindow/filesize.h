// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The text of the "File Size" column for a file of `bytes` bytes: thousands of bytes as KB up to
/// 1048576 bytes, millions as MB above, right-aligned in 14 characters before the unit. Empty for
/// nothing to show (0 or less). The size is a 32-bit number, as the column has always shown it, so
/// files of 2 GiB and more show a wrapped size or none.
[[nodiscard]] QString fileSizeText(qint64 bytes);
