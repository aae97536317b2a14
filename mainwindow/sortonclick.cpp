// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/sortonclick.h"

#include <QHeaderView>
#include <QSignalBlocker>
#include <QTableWidget>

SortOnClick::SortOnClick(QTableWidget *sortedTable) : QObject(sortedTable), table(sortedTable)
{
    clearIndicator();
    connect(table->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this,
            &SortOnClick::sortBy);
}

void SortOnClick::setEnabled(bool enabled)
{
    table->horizontalHeader()->setSectionsClickable(enabled);
}

void SortOnClick::sortBy(int column, Qt::SortOrder order)
{
    if (column < 0)
        return;
    // With the indicator always cleared the header asks for the first order each time.
    if (column == lastColumn)
        order = lastOrder == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    lastColumn = column;
    lastOrder = order;
    {
        const QSignalBlocker noFurtherSorting(table->horizontalHeader());
        table->sortItems(column, order);
    }
    clearIndicator();
    emit sorted();
}

void SortOnClick::clearIndicator()
{
    const QSignalBlocker noSorting(table->horizontalHeader());
    table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
}
