// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/rulestore.h"

#include <QSettings>
#include <QVariant>

#include <algorithm>
#include <utility>

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

bool isRuleNameAllowed(const QString &name)
{
    return !name.contains(QLatin1Char('/')) && name != flagGroup;
}

bool saveRule(QSettings &settings, const QString &name, const Subtext &fragment)
{
    // The settings library keeps what it could not write, shows it to every reader in the program,
    // and writes it whenever it can.
    QList<std::pair<QString, QVariant>> former;
    const auto store = [&](const QString &key, const QString &value) {
        former.append({key, settings.value(key)});
        settings.setValue(key, value);
    };
    store(flagKey(name), QStringLiteral("1"));
    store(currentRuleKey, name);
    store(ruleKey(name, QLatin1String("xpos")), QString::number(fragment.left));
    store(ruleKey(name, QLatin1String("ypos")), QString::number(fragment.top));
    store(ruleKey(name, QLatin1String("wid")), QString::number(fragment.width));
    store(ruleKey(name, QLatin1String("hei")), QString::number(fragment.height));
    store(ruleKey(name, QLatin1String("text")), fragment.text);
    settings.sync();
    if (settings.status() != QSettings::AccessError)
        return true;
    for (const auto &[key, value] : std::as_const(former)) {
        if (value.isValid())
            settings.setValue(key, value);
        else
            settings.remove(key);
    }
    return false;
}

QString currentRuleName(const QSettings &settings)
{
    return settings.value(currentRuleKey).toString();
}
