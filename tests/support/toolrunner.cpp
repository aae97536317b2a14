// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/toolrunner.h"

#include "tests/support/pdfbuilder.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <linux/capability.h>
#include <sys/prctl.h>

ToolResult runTool(const QString &name, const QStringList &arguments, int timeoutMs)
{
    QProcess process;
    // Without the privileges to pass all permissions, so that root sees what others see.
    process.setChildProcessModifier([] {
        ::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
        ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
    });
    process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + name, arguments);
    ToolResult result;
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    if (process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    return result;
}

ToolResult mergePages(const QString &file, const QString &ranges, const QString &out)
{
    QStringList arguments = {file, QStringLiteral("-merge")};
    arguments += ranges.split(QLatin1Char(' '));
    arguments += {QStringLiteral("-outfile"), out};
    return runTool(QStringLiteral("stavekit"), arguments);
}

MergeRun::MergeRun(const QByteArray &bytes, const QString &ranges)
    : input(folder.filePath("in.pdf")), output(folder.filePath("out.pdf"))
{
    writeFile(input, bytes);
    result = mergePages(input, ranges, output);
}

int toolPageCount(const QString &file, const QString &infoFile)
{
    const ToolResult result =
        runTool(QStringLiteral("stavekit"),
                {file, QStringLiteral("-getinfo"), QStringLiteral("-outfile"), infoFile});
    QFile info(infoFile);
    const QByteArray key = "NumberOfPages: ";
    if (result.exitCode < 0 || !info.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray line = info.readLine().trimmed();
    bool isNumber = false;
    const int count = line.mid(key.size()).toInt(&isNumber);
    return isNumber ? count : -1;
}

ToolResult convertPages(const QString &file, const QString &folder, const QStringList &options)
{
    return runTool(QStringLiteral("quillrend"), QStringList(QStringLiteral("-htmlformat")) +
                                                    options +
                                                    QStringList{file, folder + "/split.xml"});
}

QString layoutPath(const QString &folder, int page)
{
    return QStringLiteral("%1/split_pg_%2.htm").arg(folder).arg(page, 4, 10, QLatin1Char('0'));
}
