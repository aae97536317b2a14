// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/fileresult.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>

FileResult beginResult(const QString &input)
{
    const QFileInfo file(input);
    FileResult result;
    result.input = input;
    result.size = file.size();
    result.time = file.lastModified().toUTC().toString(Qt::ISODateWithMs);
    return result;
}

FileResult failedResult(const QString &input, pdf::ExitCode code, const QString &cause)
{
    FileResult result = beginResult(input);
    result.verdict = verdict::failed;
    result.exitCode = code;
    const QString prefix = input + QLatin1String(": ");
    result.cause = cause.startsWith(prefix) ? cause.mid(prefix.size()) : cause;
    return result;
}

QJsonObject toJson(const FileResult &result)
{
    QJsonArray documents;
    for (const DocumentResult &document : result.documents)
        documents.append(QJsonObject{{"range", document.range},
                                     {"text", document.text},
                                     {"file", document.file},
                                     {"bytes", document.bytes}});
    return {{"input", result.input},
            {"size", result.size},
            {"time", result.time},
            {"pages", result.pages},
            {"documents", documents},
            {"verdict", result.verdict},
            {"cause", result.cause},
            {"complaints", QJsonArray::fromStringList(result.complaints)},
            {"pagesWithoutText", result.pagesWithoutText},
            {"pagesWithUnknownLetters", result.pagesWithUnknownLetters},
            {"exitCode", static_cast<int>(result.exitCode)},
            {"seconds", result.seconds}};
}

FileResult fromJson(const QJsonObject &object)
{
    FileResult result;
    result.input = object["input"].toString();
    result.size = object["size"].toInteger();
    result.time = object["time"].toString();
    result.pages = object["pages"].toInt();
    for (const QJsonValue &entry : object["documents"].toArray())
        result.documents.append({entry["range"].toString(), entry["text"].toString(),
                                 entry["file"].toString(), entry["bytes"].toInteger()});
    result.verdict = object["verdict"].toString();
    result.cause = object["cause"].toString();
    for (const QJsonValue &complaint : object["complaints"].toArray())
        result.complaints.append(complaint.toString());
    result.pagesWithoutText = object["pagesWithoutText"].toString();
    result.pagesWithUnknownLetters = object["pagesWithUnknownLetters"].toString();
    result.exitCode = static_cast<pdf::ExitCode>(object["exitCode"].toInt());
    result.seconds = object["seconds"].toDouble();
    return result;
}
