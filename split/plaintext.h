// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// `text`, which may come from a stranger's file, with a blank in place of every character that
/// would make it look like something else: control characters (Unicode's category Cc, line ends
/// among them), line and paragraph separators, the zero width space, and the marks that reverse the
/// direction of what follows (U+202A to U+202E, U+2066 to U+2069). A letter whose character is not
/// known (see pdf/layout/unknownglyphs.h) is shown as U+FFFD.
[[nodiscard]] QString withoutControlCharacters(QString text);
