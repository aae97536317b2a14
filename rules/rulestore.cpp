// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/rulestore.h"

#include <QSettings>

#include <algorithm>

namespace {

const QLatin1String flagGroup("zeph");
const QLatin1String currentRuleKey("currule/rule");

QString flagKey(const QString &name)
{
    return flagGroup + QLatin1Char('/') + name;
}

/// The group of a rule: its name. But the settings library reads a section "general", in whatever
/// case it was written, back as "General".
QString groupOf(const QString &name)
{
    const QLatin1String general("General");
    const bool isGeneral =
        name.section(QLatin1Char('/'), 0, 0).compare(general, Qt::CaseInsensitive) == 0;
    return isGeneral ? general + name.mid(general.size()) : name;
}

QString ruleKey(const QString &name, QLatin1String key)
{
    return groupOf(name) + QLatin1Char('/') + key;
}

} // namespace

QStringList ruleNames(QSettings &settings)
{
    settings.beginGroup(flagGroup);
    QStringList names = settings.childKeys();
    settings.endGroup();
    return names;
}

bool isRuleNameTaken(const QSettings &settings, const QString &name)
{
    const auto isFlagged = [&settings](const QString &key) {
        return settings.value(key, QStringLiteral("0")).toString() == QLatin1String("1");
    };
    if (isFlagged(flagKey(name)))
        return true;
    const QStringList keys = settings.allKeys();
    return std::any_of(keys.cbegin(), keys.cend(), [&](const QString &key) {
        return key.startsWith(flagKey(QString())) && isFlagged(key) &&
               groupOf(key.mid(flagKey(QString()).size())) == groupOf(name);
    });
}

Subtext readRule(const QSettings &settings, const QString &name)
{
    const auto number = [&](const char *key) {
        return settings.value(ruleKey(name, QLatin1String(key)), QStringLiteral("0")).toInt();
    };
    Subtext rule;
    rule.left = number("xpos");
    rule.top = number("ypos");
    rule.width = number("wid");
    rule.height = number("hei");
    rule.text = settings.value(ruleKey(name, QLatin1String("text"))).toString();
    return rule;
}

void saveRule(QSettings &settings, const QString &name, const Subtext &fragment)
{
    settings.setValue(flagKey(name), QStringLiteral("1"));
    settings.setValue(currentRuleKey, name);
    const auto store = [&](const char *key, const QString &value) {
        settings.setValue(ruleKey(name, QLatin1String(key)), value);
    };
    store("xpos", QString::number(fragment.left));
    store("ypos", QString::number(fragment.top));
    store("wid", QString::number(fragment.width));
    store("hei", QString::number(fragment.height));
    store("text", fragment.text);
}

QString currentRuleName(const QSettings &settings)
{
    return settings.value(currentRuleKey).toString();
}
