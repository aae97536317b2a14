// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// Where people find the product on the web.
inline QString homePageAddress()
{
    return QStringLiteral("https://sendrivo.example/");
}

/// Where people write for help.
inline QString supportAddress()
{
    return QStringLiteral("support@sendrivo.example");
}
