// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>

/// The rule editor.
class Rules : public QDialog
{
    Q_OBJECT

public:
    explicit Rules(QWidget *parent = nullptr) : QDialog(parent) {}

public slots:
    /// Prepares the dialog from the hand-over keys "file/file" and "file/page".
    bool setIniImage() { return false; }
};
