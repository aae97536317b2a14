// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/fragment.h"

#include <QByteArray>

#include <vector>

/// The fragments of the first page of a PDF file.
[[nodiscard]] std::vector<pdf::Fragment> fragmentsOf(const QByteArray &file);
