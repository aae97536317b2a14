// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

class PrivateTemporaryFolder;

/// To live while the application object is being made: Qt aborts when it finds no usable display.
/// The program then ends with one line on standard error and exit code 1, without a core dump and
/// without its temporary folder. One object per program.
class DisplayCheck
{
public:
    /// `line`, with its line end, and `folder` must outlive the object.
    explicit DisplayCheck(const char *line, const PrivateTemporaryFolder *folder = nullptr);
    ~DisplayCheck();
    Q_DISABLE_COPY_MOVE(DisplayCheck)
};
