// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

// How the options stand in setting.ini. Everything is text; reading never fails, what cannot be
// used is replaced.

/// "Ok" for on, "No" for off.
[[nodiscard]] QString flagText(bool on);

/// The flag in `stored`. Only the exact word that contradicts `fallback` changes it ("No" when
/// that is on, "Ok" when it is off); everything else, other letter case included, is `fallback`.
[[nodiscard]] bool flagValue(const QString &stored, bool fallback);

/// The index in `stored`, 0 when that is no number; `fallback` when it lies outside 0 to `last`.
[[nodiscard]] int indexValue(const QString &stored, int last, int fallback);

/// `stored` without any blanks, or `fallback` when nothing is left.
[[nodiscard]] QString resolutionValue(const QString &stored, const QString &fallback);

/// Index of the preset in `stored`: 1 (custom) for exactly "1", else 0 (standard).
[[nodiscard]] int presetValue(const QString &stored);

/// "0" for the standard preset (index 0), "1" for any other.
[[nodiscard]] QString presetText(int index);
