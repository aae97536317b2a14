// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "split/subtext.h"

#include <QStringList>
#include <QStringView>

/// Plain string scanning of page layout files: one fragment per line, for instance
///
///     <span style="left:64;top:118;width:93;height:15">INV-0042</span>
///
/// The files are read line by line and not as HTML, which keeps a page of thousands of fragments
/// cheap. Every function accepts any line; what a line does not hold reads as 0 or as no text.

/// Lines beyond this number are not looked at, so a broken layout file cannot stall a batch.
constexpr int maxScannedLines = 9999;

/// Stands for "no fragment at the position" in a list of page texts.
inline QString noText()
{
    return QStringLiteral(" ");
}

/// The lines of a layout file, without the empty ones.
[[nodiscard]] QStringList layoutFileLines(const QString &layout);

/// The whole number that follows the first occurrence of `key` in `line`: one separator character
/// is passed over, then everything up to a ";", a double quote or the end of the line is the value.
/// Returns 0 when the key is missing or the value is not a positive decimal 32-bit integer: units
/// and fractions make a value unreadable on purpose, since positions are compared exactly.
[[nodiscard]] int styleValue(QStringView key, QStringView line);

/// The text between the first "</span>" and the ">" nearest before it; empty without a "</span>".
[[nodiscard]] QString fragmentText(QStringView line);

/// The fragment that `line` describes.
[[nodiscard]] Subtext parseFragment(QStringView line);

/// The text of the first fragment whose top left corner is exactly at (`left`, `top`), or noText().
/// At most maxScannedLines lines are scanned.
[[nodiscard]] QString textAtPosition(const QStringList &lines, int left, int top);
