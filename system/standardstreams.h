// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// Opens /dev/null for those of standard input, output and error that the program was started
/// without. The next file that it opens would take the place, and what it prints would get into
/// that file. To be called before anything is opened.
void openMissingStreams();
