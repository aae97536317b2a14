// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>

/// How produced documents are to be built.
class OpDialog : public QDialog
{
    Q_OBJECT

public:
    explicit OpDialog(QWidget *parent = nullptr) : QDialog(parent) {}
};
