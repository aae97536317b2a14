// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "about/secdialog.h"

#include "ui_secdialog.h"

SecDialog::SecDialog(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui_SecDialog>())
{
    ui->setupUi(this);
}

SecDialog::~SecDialog() = default;
