// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The folder for working files: this process's temporary folder. One that has vanished, because
/// something on the machine clears away what looks old, is made again for its owner only. Empty
/// when that fails; a path made of an empty folder would lead to "/".
[[nodiscard]] QString workingFolder();
