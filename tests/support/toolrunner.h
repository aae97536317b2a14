// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// What a run of a tool left on its channels.
struct ToolResult
{
    int exitCode = -1; ///< -1 when it crashed, could not be started or did not end in time
    QByteArray output;
    QByteArray errors;
};

/// Runs the tool that stands beside the test program ("stavekit"), at most timeoutMs.
[[nodiscard]] ToolResult runTool(const QString &name, const QStringList &arguments,
                                 int timeoutMs = 60000);

/// stavekit FILE -merge RANGES -outfile OUT; ranges are separated by blanks.
[[nodiscard]] ToolResult mergePages(const QString &file, const QString &ranges, const QString &out);
/// A new file and what stavekit -merge makes of it, in a folder of their own.
struct MergeRun
{
    MergeRun(const QByteArray &bytes, const QString &ranges);

    QTemporaryDir folder;
    QString input;
    QString output;
    ToolResult result;
};
/// stavekit FILE -getinfo; the digits behind "NumberOfPages: ", or -1 when there are none.
[[nodiscard]] int toolPageCount(const QString &file, const QString &infoFile);
/// quillrend -htmlformat FILE FOLDER/split.xml
[[nodiscard]] ToolResult convertPages(const QString &file, const QString &folder,
                                      const QStringList &options = {});
/// Path of the layout file of a page (from 1) that convertPages() writes.
[[nodiscard]] QString layoutPath(const QString &folder, int page);
