// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTableWidgetItem>

/// A table cell that shows a text but sorts by a number, since "9" comes before "10" and sizes are
/// shown in mixed units.
class NumberItem : public QTableWidgetItem
{
public:
    NumberItem(const QString &text, qint64 number) : QTableWidgetItem(text), value(number) {}

    bool operator<(const QTableWidgetItem &other) const override;

private:
    qint64 value;
};
