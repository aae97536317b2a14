// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// What went wrong while a file was split: it goes into the log at once, and the last of it is
/// shown with the file's verdict.
class FileTrouble
{
public:
    /// For a new file.
    void clear();

    /// Something that does not decide the verdict by itself. An empty complaint is none.
    void note(const QString &complaint);

    /// Something after which the file's documents may be incomplete or wrong: the file has failed,
    /// whatever was written.
    void fail(const QString &complaint);

    [[nodiscard]] bool hasFailed() const { return isFatal; }
    [[nodiscard]] const QString &lastComplaint() const { return last; }

private:
    QString last; ///< of the worst kind so far
    bool isFatal = false;
};

/// A complaint as a tool tip: its last line, and where the others are. Plain text, whatever a file
/// name in it looks like.
[[nodiscard]] QString complaintToolTip(const QString &complaint, const QString &logFile);
