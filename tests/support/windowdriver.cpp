// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/windowdriver.h"

#include "rules/settingsfile.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QUrl>

#include <memory>

namespace {

/// What a file manager hands over.
std::unique_ptr<QMimeData> draggedFiles(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(path.startsWith(QLatin1Char('/')) ? QUrl::fromLocalFile(path) : QUrl(path));
    auto data = std::make_unique<QMimeData>();
    data->setUrls(urls);
    return data;
}

} // namespace

QString workPath(const QString &name)
{
    return name.contains(QLatin1String("://")) ? name : QDir::current().filePath(name);
}

QStringList workPaths(const QStringList &names)
{
    QStringList paths;
    for (const QString &name : names)
        paths.append(workPath(name));
    return paths;
}

QSettings storedSettings()
{
    return QSettings(settingsFileName(), QSettings::IniFormat);
}

WindowDriver::WindowDriver()
{
    window.show();
}

QTableWidget *WindowDriver::table() const
{
    return widget<QTableWidget>("inputfiletableWidget");
}

bool WindowDriver::isEnabled(const char *name) const
{
    return widget<QWidget>(name)->isEnabled();
}

QString WindowDriver::cell(int row, int column) const
{
    const QTableWidgetItem *item = table()->item(row, column);
    return item ? item->text() : QStringLiteral("-");
}

QStringList WindowDriver::column(int number) const
{
    QStringList texts;
    for (int row = 0; row < table()->rowCount(); ++row)
        texts.append(cell(row, number));
    return texts;
}

QStringList WindowDriver::progress() const
{
    return widget<QTextEdit>("textEdit_process")->toPlainText().split(QLatin1Char('\n'));
}

void WindowDriver::click(const char *buttonName) const
{
    QTest::mouseClick(widget<QPushButton>(buttonName), Qt::LeftButton);
}

void WindowDriver::clickCell(int row, int column, Qt::KeyboardModifiers modifiers) const
{
    const QRect place = table()->visualRect(table()->model()->index(row, column));
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, modifiers, place.center());
}

void WindowDriver::clickHeader(int column) const
{
    const QHeaderView *header = table()->horizontalHeader();
    const QPoint place(header->sectionViewportPosition(column) + 20, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
}

bool WindowDriver::takesDrag()
{
    const auto data = draggedFiles({QStringLiteral("/in.pdf")});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, data.get(), Qt::LeftButton, {});
    enter.ignore();
    QCoreApplication::sendEvent(&window, &enter);
    return enter.isAccepted();
}

void WindowDriver::drop(const QStringList &paths)
{
    const auto data = draggedFiles(paths);
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, data.get(), Qt::LeftButton, {});
    window.dropEvent(&event);
}

bool WindowDriver::add(const QStringList &paths)
{
    drop(paths);
    return waitForPageCounts();
}

bool WindowDriver::waitForPageCounts() const
{
    return QTest::qWaitFor([this] { return isEnabled("openfileButton"); }, 30000);
}

void WindowDriver::choose(const QString &rule, int method, const QString &folder) const
{
    widget<QComboBox>("comboBox_rule")->setCurrentText(rule);
    widget<QComboBox>("comboBox_method")->setCurrentIndex(method);
    setOutputFolder(folder);
}

bool WindowDriver::split()
{
    const auto finished = [this] {
        return progress().count(QStringLiteral("Conversion Finished."));
    };
    const qsizetype before = finished();
    click("runButton");
    return QTest::qWaitFor([&] { return finished() > before; }, 120000);
}

void WindowDriver::setOutputFolder(const QString &folder) const
{
    widget<QLineEdit>("outputfolderEdit")->setText(folder);
}

void whenDialogOpens(const std::function<void(QDialog *)> &answer)
{
    auto *watch = new QTimer(qApp);
    QObject::connect(watch, &QTimer::timeout, qApp, [watch, answer] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        watch->deleteLater();
        watch->stop();
        answer(dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
    watch->start(10);
}

void acceptMessageBox(QString *shown)
{
    whenDialogOpens([shown](QDialog *dialog) {
        if (const auto *box = qobject_cast<QMessageBox *>(dialog)) {
            *shown = box->windowTitle() + QLatin1String(": ") + box->text();
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        }
    });
}
