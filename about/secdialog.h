// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>

#include <memory>

class Ui_SecDialog;

/// An empty dialog, kept for those who build on it. The program does not create it.
class SecDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SecDialog(QWidget *parent = nullptr);
    ~SecDialog() override;

private:
    std::unique_ptr<Ui_SecDialog> ui;
};
