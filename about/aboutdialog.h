// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>

#include <memory>

class Ui_AboutDialog;

/// The about box: a notice, links to the home page and to the support address, name and version.
/// Its size is fixed. One instance may be shown any number of times.
class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget *parent = nullptr);
    ~AboutDialog() override;

public slots:
    /// Opens the web address `address` in the desktop's browser.
    void openMainpage(const QString &address);
    /// Opens the "mailto:" address `address` in the desktop's mail client.
    void openMailpage(const QString &address);

private:
    std::unique_ptr<Ui_AboutDialog> ui;
};
