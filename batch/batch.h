// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// The program sendrivo-batch; returns its exit code.
[[nodiscard]] int runBatch(int argc, char *argv[]);
