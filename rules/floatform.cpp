// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/floatform.h"

#include "ui_floatform.h"

floatform::floatform(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui_floatform>())
{
    ui->setupUi(this);
    setWindowFlags(Qt::FramelessWindowHint | Qt::CustomizeWindowHint);
}

floatform::~floatform() = default;
