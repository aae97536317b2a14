// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

/// Ends the event loop on SIGHUP, SIGINT and SIGTERM (a logout, Ctrl-C, kill), so that the program
/// leaves in the ordinary way and its temporary folder goes with it. To be made before that folder:
/// a signal that comes before there is an event loop ends it as soon as it begins. One object per
/// program.
class QuitOnSignal
{
public:
    QuitOnSignal();
    ~QuitOnSignal();
    Q_DISABLE_COPY_MOVE(QuitOnSignal)

    /// To be called once, when the application object has been made.
    void connectToApplication();
};
