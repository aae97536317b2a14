// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

/// A file name, or any other argument, as text.
struct FileName
{
    /// `bytes` as the system gives them.
    explicit FileName(const QByteArray &bytes);

    QString text;
    /// Whether they are UTF-8. If not, the text is for people only: it may be the name of another
    /// file.
    bool isText = true;
};
