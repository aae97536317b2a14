// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/fragment.h"

#include <QRegularExpression>
#include <QString>

#include <exception>
#include <vector>

/// Which text of a page decides.
struct TextQuery
{
    int left = 0;        ///< of the fragment's top left corner, page pixels
    int top = 0;         ///< of the same corner
    int tolerancePx = 0; ///< how far, in each direction, the corner may be away
    /// What a text, as a person sees it, must match to count; empty: anything counts.
    QRegularExpression match;
};

/// A text takes the expression more steps than the engine makes: whether it matches is not known.
class MatchLimit : public std::exception
{
};

/// The text that decides for a page with these fragments, or noText(). Among several fragments
/// within the tolerance the one nearest to the position wins, then the one that comes first. When
/// the expression has a group, the text of its first group is taken, and an empty one does not
/// count.
[[nodiscard]] QString queriedText(const std::vector<pdf::Fragment> &fragments,
                                  const TextQuery &query);
