// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/plaintext.h"

namespace {

bool isMisleading(QChar c)
{
    const char16_t code = c.unicode();
    return c.category() == QChar::Other_Control || code == 0x200b ||
           (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

} // namespace

QString withoutControlCharacters(QString text)
{
    for (QChar &c : text) {
        if (isMisleading(c))
            c = QLatin1Char(' ');
    }
    return text;
}
