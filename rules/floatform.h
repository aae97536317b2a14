// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

#include <memory>

class Ui_floatform;

/// An empty frameless form. No window of the program creates one.
class floatform : public QWidget
{
    Q_OBJECT

public:
    explicit floatform(QWidget *parent = nullptr);
    ~floatform() override;
    Q_DISABLE_COPY_MOVE(floatform)

private:
    std::unique_ptr<Ui_floatform> ui;
};
