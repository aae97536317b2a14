// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/filesize.h"
#include "mainwindow/numberitem.h"
#include "mainwindow/process.h"
#include "rules/settingsfile.h"
#include "ui_process.h"

#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QSettings>
#include <QTimer>
#include <QUrl>

#include <set>

namespace {

const QLatin1String inputFolderKey("dir/input");

} // namespace

void Process::setopenfile()
{
    connectPreview();
    clearPendingFiles();
    QSettings settings(settingsFileName(), QSettings::IniFormat);
    const QString folder = settings.value(inputFolderKey, QStringLiteral(".")).toString();
    const QStringList paths = QFileDialog::getOpenFileNames(this, tr("Add File"), folder,
                                                            tr("PDF File(*.pdf);;ALL files(*.*)"));
    if (paths.isEmpty())
        return;
    settings.setValue(inputFolderKey, QFileInfo(paths.constFirst()).absolutePath());
    for (const QString &path : paths)
        addRow(ui->inputfiletableWidget->rowCount(), path);
    beginPageCounts();
}

void Process::dragEnterEvent(QDragEnterEvent *event)
{
    if (ui->openfileButton->isEnabled() &&
        event->mimeData()->hasFormat(QStringLiteral("text/uri-list")))
        event->acceptProposedAction();
}

void Process::dropEvent(QDropEvent *event)
{
    clearPendingFiles();
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty())
        return;
    // A skipped URL still counts: its place in the list stays unused, and what would land past
    // the end of the list because of it gets no row.
    int row = ui->inputfiletableWidget->rowCount();
    for (const QUrl &url : urls) {
        const QString path = url.toLocalFile();
        if (path.isEmpty())
            break;
        const QFileInfo file(path);
        if (file.isDir())
            return;
        if (file.suffix().toLower() == QLatin1String("pdf"))
            addRow(row, path);
        ++row;
    }
    beginPageCounts();
}

void Process::setremove()
{
    if (batchRunning)
        return;
    connectPreview();
    const QModelIndexList selection = ui->inputfiletableWidget->selectionModel()->selectedIndexes();
    std::set<int, std::greater<>> rows;
    for (const QModelIndex &index : selection)
        rows.insert(index.row());
    removeRows({rows.begin(), rows.end()});
    if (ui->inputfiletableWidget->rowCount() == 0)
        setdefaultpreview();
}

void Process::setremoveall()
{
    if (batchRunning || ui->inputfiletableWidget->rowCount() == 0)
        return;
    QList<int> rows;
    for (int row = ui->inputfiletableWidget->rowCount() - 1; row >= 0; --row)
        rows.append(row);
    removeRows(rows);
    setdefaultpreview();
    connectPreview();
}

// Up and Down count filled cells, of which a row has three before it was split, but step through
// them by columns, of which there are four. One selected row, the usual case, moves by one place.

void Process::setrowup()
{
    if (batchRunning)
        return;
    QTableWidget *table = ui->inputfiletableWidget;
    const QList<QTableWidgetItem *> items = table->selectedItems();
    int handledRow = -1;
    for (qsizetype k = 0; k < items.size() / 3; ++k) {
        const qsizetype position = k * table->columnCount();
        if (position >= items.size())
            break;
        const int row = items.at(position)->row();
        if (row == handledRow || row == 0)
            continue;
        swapRows(row, row - 1);
        handledRow = row;
    }
}

void Process::setrowdown()
{
    if (batchRunning)
        return;
    QTableWidget *table = ui->inputfiletableWidget;
    const QList<QTableWidgetItem *> items = table->selectedItems();
    const int lastRow = table->rowCount() - 1;
    int handledRow = -1;
    for (qsizetype k = items.size() / 3 - 1; k >= 0; --k) {
        const qsizetype position = k * table->columnCount();
        if (position >= items.size())
            continue;
        const int row = items.at(position)->row();
        if (row == handledRow || row == lastRow)
            continue;
        swapRows(row, row + 1);
        handledRow = row;
    }
}

void Process::setopenselected()
{
    const int row = ui->inputfiletableWidget->currentRow();
    if (ui->inputfiletableWidget->item(row, 0))
        QDesktopServices::openUrl(QUrl::fromLocalFile(cellText(row, 0)));
}

void Process::setpreview()
{
    previewTimer->start(300);
}

void Process::dopreview()
{
}

void Process::setdefaultpreview()
{
}

void Process::connectPreview()
{
    connect(ui->inputfiletableWidget, &QTableWidget::itemSelectionChanged, this,
            &Process::setpreview);
}

void Process::disconnectPreview()
{
    disconnect(ui->inputfiletableWidget, &QTableWidget::itemSelectionChanged, this,
               &Process::setpreview);
}

void Process::clearPendingFiles()
{
    pendingFiles.clear();
    pendingRows.clear();
    loadIndex = 0;
}

/// A row past the end of the table is not inserted, as QTableWidget has it, but its page count is
/// still asked for.
void Process::addRow(int row, const QString &path)
{
    QTableWidget *table = ui->inputfiletableWidget;
    pendingFiles.append(path);
    pendingRows.append(QString::number(row));
    if (row > table->rowCount())
        return;
    table->insertRow(row);
    auto *pathItem = new QTableWidgetItem(path);
    pathItem->setToolTip(path); // the column may be too narrow for it
    table->setItem(row, 0, pathItem);
    const qint64 bytes = QFileInfo(path).size();
    const QString text = fileSizeText(bytes);
    if (!text.isEmpty())
        table->setItem(row, 2, new NumberItem(text, bytes));
}

void Process::beginPageCounts()
{
    QTableWidget *table = ui->inputfiletableWidget;
    table->selectionModel()->setCurrentIndex(
        table->model()->index(0, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    fetchingPageCounts = true;
    focusBeforeCounts = focusWidget();
    updateControls();
    focusDuringCounts = focusWidget();
    getpdfpage();
}

/// A button that is switched off hands the focus on; who added files by keyboard gets it back,
/// unless they have moved on themselves.
void Process::returnFocus()
{
    if (focusBeforeCounts && focusWidget() == focusDuringCounts)
        focusBeforeCounts->setFocus();
}

void Process::removeRows(const QList<int> &descendingRows)
{
    for (const int row : descendingRows) {
        if (ui->inputfiletableWidget->rowCount() == 1)
            disconnectPreview();
        ui->inputfiletableWidget->removeRow(row);
    }
    listChanged();
}

void Process::swapRows(int row, int other)
{
    QTableWidget *table = ui->inputfiletableWidget;
    for (int column = 0; column < table->columnCount(); ++column) {
        QTableWidgetItem *item = table->takeItem(row, column);
        QTableWidgetItem *otherItem = table->takeItem(other, column);
        table->setItem(row, column, otherItem);
        table->setItem(other, column, item);
    }
    table->selectRow(other);
    listChanged();
}

/// A batch that stopped between two files goes on with the next one when Split is pressed again;
/// with other files in the rows it must begin anew.
void Process::listChanged()
{
    fileIndex = 0;
}
