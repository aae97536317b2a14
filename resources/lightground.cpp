// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "resources/lightground.h"

#include <QPalette>
#include <QPixmap>
#include <QWidget>

namespace {

constexpr QRgb groundColour = 0xffeceff1;
// Contrast with #E1E6E2, the darkest ground that text stands on: 13:1, and 4:1 when disabled.
constexpr QRgb textColour = 0xff1c2126;
constexpr QRgb disabledTextColour = 0xff6a7178;

/// Sets the colours on `widget` alone and what inherits from it.
void setOwnColours(QWidget *widget)
{
    // The shades of frames and of raised and sunken edges follow from the ground.
    const QColor ground = QColor::fromRgb(groundColour);
    const QPalette shades(ground, ground);
    QPalette palette = widget->palette();
    for (const auto role :
         {QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::Button,
          QPalette::Light, QPalette::Midlight, QPalette::Mid, QPalette::Dark, QPalette::Shadow}) {
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
            palette.setBrush(group, role, shades.brush(group, role));
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, QColor::fromRgb(textColour));
        palette.setColor(QPalette::Disabled, role, QColor::fromRgb(disabledTextColour));
    }
    palette.setColor(QPalette::PlaceholderText, QColor::fromRgb(disabledTextColour));
    widget->setPalette(palette);
}

[[nodiscard]] bool hasStyleSheet(const QWidget *widget)
{
    while (widget && widget->styleSheet().isEmpty())
        widget = widget->parentWidget();
    return widget != nullptr;
}

} // namespace

void setLightColours(QWidget *widget)
{
    setOwnColours(widget);
    // A widget under a style sheet does not take over its parent's palette; and unless the style
    // sheet is in force already, the widget goes back to its former palette when it is first shown.
    const auto children = widget->findChildren<QWidget *>();
    for (QWidget *child : children) {
        if (hasStyleSheet(child)) {
            child->ensurePolished();
            setOwnColours(child);
        }
    }
}

void setPictureGround(QWidget *window, const QString &path)
{
    setLightColours(window);
    const QPixmap picture(path);
    if (!picture.isNull()) {
        QPalette palette = window->palette();
        palette.setBrush(QPalette::Window, picture.scaled(window->size(), Qt::IgnoreAspectRatio,
                                                          Qt::SmoothTransformation));
        window->setPalette(palette);
    }
    window->setAutoFillBackground(true);
}
