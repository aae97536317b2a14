// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/filename.h"

#include <QStringDecoder>

FileName::FileName(const QByteArray &bytes)
{
    // A byte order mark is part of a name.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::ConvertInitialBom);
    text = decoder.decode(bytes);
    isText = !decoder.hasError() && text.toUtf8() == bytes;
}
