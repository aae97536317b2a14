// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "split/subtext.h"

#include <QString>
#include <QStringList>

class QSettings;

/// Named rules in the settings file. A rule N is the key "zeph/N" with the value "1", which takes
/// the name, and the group "N" with the keys "xpos", "ypos", "wid", "hei" and "text" of the picked
/// fragment, all written as text. "currule/rule" names the rule saved last. Names are used exactly
/// as given; the settings library escapes what the INI format needs.
///
/// Rules are only ever added: nothing here changes or deletes a stored rule whose name is taken.

/// The names of the stored rules, in the order in which the settings library lists them.
[[nodiscard]] QStringList ruleNames(QSettings &settings);

/// Whether `name` belongs to a stored rule. A name flagged with anything but "1" counts as free.
/// "general" is taken once "General" is: the settings library keeps no such groups apart.
[[nodiscard]] bool isRuleNameTaken(const QSettings &settings, const QString &name);

/// The rectangle and text stored under `name`; missing or unreadable numbers are 0.
[[nodiscard]] Subtext readRule(const QSettings &settings, const QString &name);

/// Whether a rule `name` would be listed again and leave the other rules alone. Of a name with "/"
/// the settings library makes a sub-group, which ruleNames() does not list; and the numbers of a
/// rule "zeph" would be listed as rules themselves. The names of the other groups do no harm: their
/// keys are unlike those of a rule. Such rules of earlier versions can still be read.
[[nodiscard]] bool isRuleNameAllowed(const QString &name);

/// Stores `fragment` as rule `name` and makes it the current rule. The caller has made sure that
/// the name is not empty and not taken. Returns false, with the settings as they were, when the
/// file cannot be written.
bool saveRule(QSettings &settings, const QString &name, const Subtext &fragment);

/// The name of the rule saved last, empty when there is none.
[[nodiscard]] QString currentRuleName(const QSettings &settings);
