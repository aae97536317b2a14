// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

class QTableWidget;

/// Sorts a table when a header section is clicked, and only then.
///
/// A QTableWidget with sorting enabled and an active column sorts again after every changed cell,
/// while the caller is still filling rows by number: cells land in rows of other files. So no
/// column stays active here: a click sorts once, and the sort indicator is taken away again. A
/// second click on the same header sorts the other way round.
class SortOnClick : public QObject
{
    Q_OBJECT

public:
    /// Takes over the sorting of `table`, which must have sorting enabled, and becomes its child.
    explicit SortOnClick(QTableWidget *table);

    /// Whether clicks on the header sort.
    void setEnabled(bool enabled);

signals:
    /// The rows have been put into another order.
    void sorted();

private:
    void sortBy(int column, Qt::SortOrder order);
    void clearIndicator();

    QTableWidget *table;
    int lastColumn = -1;
    Qt::SortOrder lastOrder = Qt::AscendingOrder;
};
