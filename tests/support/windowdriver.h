// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "mainwindow/process.h"

#include <QApplication>
#include <QPushButton>
#include <QSettings>
#include <QStringList>
#include <QTableWidget>

#include <functional>

/// A path in the working folder; addresses ("https://...") stay as they are.
[[nodiscard]] QString workPath(const QString &name);
[[nodiscard]] QStringList workPaths(const QStringList &names);

/// The settings file of the working folder, opened anew.
[[nodiscard]] QSettings storedSettings();

/// Uses a main window as a person does, by its widgets.
class WindowDriver
{
public:
    WindowDriver();

    Process window;

    [[nodiscard]] QTableWidget *table() const;
    template <typename Widget>
    [[nodiscard]] Widget *widget(const char *name) const
    {
        return window.findChild<Widget *>(QLatin1String(name));
    }
    [[nodiscard]] bool isEnabled(const char *name) const;

    /// The text of a cell; "-" where there is no item.
    [[nodiscard]] QString cell(int row, int column) const;
    /// A column from top to bottom.
    [[nodiscard]] QStringList column(int number) const;
    /// The lines of the progress pane.
    [[nodiscard]] QStringList progress() const;

    void click(const char *buttonName) const;
    /// Clicks on a cell; with Control it is added to the selection.
    void clickCell(int row, int column, Qt::KeyboardModifiers modifiers = {}) const;
    void clickHeader(int column) const;
    /// Whether the window would take a drop of files.
    [[nodiscard]] bool takesDrag();
    /// Drops files, folders or addresses onto the window. Paths begin with "/".
    void drop(const QStringList &paths);
    /// Drops files and waits until their page counts are there.
    [[nodiscard]] bool add(const QStringList &paths);
    /// Waits until no page counts are being fetched.
    [[nodiscard]] bool waitForPageCounts() const;
    /// Chooses what a batch needs.
    void choose(const QString &rule, int method, const QString &folder) const;
    void setOutputFolder(const QString &folder) const;
    /// Presses Split and waits for the end of the batch.
    [[nodiscard]] bool split();
};

/// As long as it lives, the desktop's font has this size.
struct DesktopFont
{
    explicit DesktopFont(int pointSize) { QApplication::setFont({usual.family(), pointSize}); }
    ~DesktopFont() { QApplication::setFont(usual); }
    Q_DISABLE_COPY_MOVE(DesktopFont)

    const QFont usual = QApplication::font();
};

/// Runs `answer` with the next modal dialog as soon as it is there. The dialog is closed afterwards
/// if `answer` has not done so.
void whenDialogOpens(const std::function<void(QDialog *)> &answer);

/// Answers the next message box with OK and gives its "title: text" to `shown`.
void acceptMessageBox(QString *shown);
