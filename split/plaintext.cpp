// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/plaintext.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

bool isMisleading(QChar c)
{
    const char16_t code = c.unicode();
    return c.category() == QChar::Other_Control || code == 0x200b ||
           (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

/// A letter that the page shows and no table of its font knows is a pair of private characters,
/// from U+F0000 and from U+100000 on (see pdf/layout/unknownglyphs.h).
void showUnknownLetters(QString &text)
{
    static const QRegularExpression pair(
        QStringLiteral("[\\x{F0000}-\\x{FFFFF}][\\x{100000}-\\x{10FFFF}]?|"
                       "[\\x{100000}-\\x{10FFFF}]"));
    const auto isPrivate = [](QChar c) { return c.unicode() >= 0xDB80 && c.unicode() <= 0xDBFF; };
    if (std::any_of(text.cbegin(), text.cend(), isPrivate))
        text.replace(pair, QString(QChar(QChar::ReplacementCharacter)));
}

} // namespace

QString withoutControlCharacters(QString text)
{
    for (QChar &c : text) {
        if (isMisleading(c))
            c = QLatin1Char(' ');
    }
    showUnknownLetters(text);
    return text;
}
