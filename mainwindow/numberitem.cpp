// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/numberitem.h"

bool NumberItem::operator<(const QTableWidgetItem &other) const
{
    const auto *number = dynamic_cast<const NumberItem *>(&other);
    return number ? value < number->value : QTableWidgetItem::operator<(other);
}
