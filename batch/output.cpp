// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/output.h"

#include "pdf/error.h"

#include <QByteArray>

#include <cerrno>
#include <cstdio>
#include <cstring>

void printLine(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    if (std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout) !=
            static_cast<std::size_t>(bytes.size()) ||
        std::fflush(stdout) != 0)
        throw pdf::Error(pdf::ExitCode::OutputUnwritable,
                         std::string("standard output: ") + std::strerror(errno));
}

void complain(const QString &line)
{
    QByteArray bytes = "sendrivo-batch: " + line.toUtf8();
    for (char &c : bytes) {
        if (static_cast<unsigned char>(c) < 0x20)
            c = ' ';
    }
    std::fprintf(stderr, "%s\n", bytes.constData());
}
