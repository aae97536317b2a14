// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QProcess;

/// Writes to the log what a tool that has ended, or could not be started, had to say: its standard
/// error, or why it did not start.
void logComplaints(QProcess &tool);
