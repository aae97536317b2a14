// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/textquery.h"

#include "split/layoutscan.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

/// The fragment's text as far as the expression lets it count; empty when it does not.
QString countingText(const pdf::Fragment &fragment, const QRegularExpression &match)
{
    QString text = QString::fromStdString(fragment.text);
    if (!match.pattern().isEmpty()) {
        const QRegularExpressionMatch found = match.match(text);
        if (!found.isValid())
            throw MatchLimit();
        if (!found.hasMatch())
            return {};
        if (match.captureCount() > 0)
            text = found.captured(1);
    }
    return text;
}

} // namespace

QString queriedText(const std::vector<pdf::Fragment> &fragments, const TextQuery &query)
{
    std::vector<std::pair<long long, const pdf::Fragment *>> near;
    const std::size_t scanned = std::min<std::size_t>(fragments.size(), maxScannedLines);
    for (std::size_t i = 0; i < scanned; ++i) {
        const long long dx = std::llabs(static_cast<long long>(fragments[i].left) - query.left);
        const long long dy = std::llabs(static_cast<long long>(fragments[i].top) - query.top);
        if (std::max(dx, dy) <= query.tolerancePx)
            near.emplace_back(dx * dx + dy * dy, &fragments[i]);
    }
    std::stable_sort(near.begin(), near.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    for (const auto &[distance, fragment] : near) {
        QString text = countingText(*fragment, query.match);
        if (!text.isEmpty())
            return text;
    }
    return noText();
}
