// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// Lets Qt look for plug-ins only in the folder Plugins beside the application folder, which an
/// installed Sendrivo brings along: images in .ico and .jpg format need them.
void usePlugins();
