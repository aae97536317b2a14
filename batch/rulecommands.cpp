// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/rulecommands.h"

#include "batch/output.h"
#include "batch/pagetexts.h"
#include "pdf/error.h"
#include "pdf/layout/layoutfile.h"
#include "rules/rulestore.h"
#include "split/plaintext.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

#include <algorithm>

namespace {

[[noreturn]] void refuse(const QString &cause)
{
    throw pdf::Error(pdf::ExitCode::Usage, cause.toStdString());
}

Subtext toSubtext(const pdf::Fragment &fragment)
{
    return {fragment.left, fragment.top, fragment.width, fragment.height,
            QString::fromStdString(fragment.text)};
}

QList<Subtext> pageFragments(const BatchOptions &options)
{
    pdf::Document document(QFile::encodeName(options.inputs.first()).toStdString());
    QList<Subtext> fragments;
    for (const pdf::Fragment &fragment : readFragments(document, options.page))
        fragments.append(toSubtext(fragment));
    return fragments;
}

QJsonObject toJson(const Subtext &fragment)
{
    return {{"left", fragment.left},
            {"top", fragment.top},
            {"width", fragment.width},
            {"height", fragment.height},
            {"text", fragment.text}};
}

void printJson(const QJsonObject &object)
{
    printLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

QString tableLine(const QStringList &columns, const QString &text)
{
    constexpr int width = 6;
    QString line;
    for (const QString &column : columns)
        line += column.rightJustified(width) + QLatin1Char(' ');
    return line + QLatin1Char(' ') + text;
}

} // namespace

void listRules(const BatchOptions &options)
{
    QSettings settings(options.settingsFile, QSettings::IniFormat);
    const QStringList names = ruleNames(settings);
    for (const QString &name : names) {
        if (!options.isJson) {
            printLine(name);
            continue;
        }
        QJsonObject object = toJson(readRule(settings, name));
        object.insert("name", name);
        printJson(object);
    }
}

void showFragments(const BatchOptions &options)
{
    const QList<Subtext> fragments = pageFragments(options);
    if (!options.isJson)
        printLine(tableLine({"left", "top", "width", "height"}, "text"));
    for (const Subtext &fragment : fragments) {
        if (options.isJson)
            printJson(toJson(fragment));
        else
            printLine(tableLine({QString::number(fragment.left), QString::number(fragment.top),
                                 QString::number(fragment.width), QString::number(fragment.height)},
                                withoutControlCharacters(fragment.text)));
    }
}

void saveNewRule(const BatchOptions &options)
{
    QSettings settings(options.settingsFile, QSettings::IniFormat);
    if (options.newRuleName.isEmpty())
        refuse(QStringLiteral("--save-rule: the rule needs a name"));
    if (isRuleNameTaken(settings, options.newRuleName))
        refuse(
            QStringLiteral("--save-rule: there is a rule \"%1\" already").arg(options.newRuleName));
    if (!isRuleNameAllowed(options.newRuleName))
        refuse(QStringLiteral("--save-rule: a name must not be \"zeph\" or contain a \"/\""));
    Subtext rule;
    rule.left = options.position->first;
    rule.top = options.position->second;
    if (options.page > 0) {
        const QList<Subtext> fragments = pageFragments(options);
        const auto found =
            std::find_if(fragments.begin(), fragments.end(), [&rule](const Subtext &fragment) {
                return fragment.left == rule.left && fragment.top == rule.top;
            });
        if (found == fragments.end())
            refuse(QStringLiteral("%1: page %2 has no text at %3,%4")
                       .arg(options.inputs.first())
                       .arg(options.page)
                       .arg(rule.left)
                       .arg(rule.top));
        rule = *found;
        // The window stores it as it stands in a layout file.
        rule.text = QString::fromStdString(pdf::markupText(rule.text.toStdString()));
    }
    saveRule(settings, options.newRuleName, rule);
    settings.sync();
    if (settings.status() != QSettings::NoError)
        throw pdf::Error(pdf::ExitCode::OutputUnwritable,
                         options.settingsFile.toStdString() + ": cannot be written");
}
