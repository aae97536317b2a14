// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

/// Ends the event loop on SIGHUP, SIGINT and SIGTERM (a logout, Ctrl-C, kill), so that the program
/// leaves in the ordinary way and its temporary folder goes with it. One object per program.
class QuitOnSignal : public QObject
{
public:
    QuitOnSignal();
    ~QuitOnSignal() override;
    Q_DISABLE_COPY_MOVE(QuitOnSignal)
};
