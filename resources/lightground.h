// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

class QWidget;

// Some windows stand on a light picture, and some labels on a light style sheet colour, whatever
// the desktop's palette is. Under a dark palette text would be light on light there. Such windows
// are therefore light throughout: dark labels beside black fields would be readable, but ugly.

/// Gives `widget`, and all children that take their colours from it, light fields and buttons and
/// dark text. Colours of selections and tooltips stay the desktop's. Call it when the children are
/// in place and have their style sheets.
void setLightColours(QWidget *widget);

/// Makes the picture at `path`, stretched to the present size of `window`, the ground of `window`
/// in all colour groups, and calls setLightColours(). The picture is not stretched again when the
/// window is resized later. A path that holds no picture leaves the ground plainly light.
void setPictureGround(QWidget *window, const QString &path);
