// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/theme.h"

#include <QApplication>
#include <QColor>
#include <QStyle>
#include <QStyleFactory>

namespace glimmerhost {
namespace {

struct Begun {
  QString style;
  QPalette palette;
};

const Begun& WhatItBeganWith() {
  static const Begun begun{QApplication::style()->objectName(), QApplication::palette()};
  return begun;
}

struct Shades {
  QColor window;
  QColor base;
  QColor button;
  QColor text;
  QColor dim;
  QColor highlight;
  QColor link;
};

// A neutral grey: a tint beside a picture changes how its colours look.
const Shades kDarkShades{QColor(38, 38, 38),    QColor(28, 28, 28),    QColor(52, 52, 52),
                         QColor(222, 222, 222), QColor(122, 122, 122), QColor(62, 110, 166),
                         QColor(120, 170, 230)};
const Shades kLightShades{QColor(239, 239, 239), QColor(255, 255, 255), QColor(228, 228, 228),
                          QColor(24, 24, 24),    QColor(140, 140, 140), QColor(48, 108, 180),
                          QColor(20, 80, 160)};

}  // namespace

QPalette PaletteOf(Theme theme) {
  const Shades& shades = theme == Theme::kDark ? kDarkShades : kLightShades;
  QPalette palette(shades.button, shades.window);
  palette.setColor(QPalette::Base, shades.base);
  palette.setColor(QPalette::AlternateBase, shades.window);
  palette.setColor(QPalette::ToolTipBase, shades.button);
  palette.setColor(QPalette::Highlight, shades.highlight);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, shades.link);
  palette.setColor(QPalette::PlaceholderText, shades.dim);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                                         QPalette::ToolTipText, QPalette::BrightText}) {
    palette.setColor(role, shades.text);
    palette.setColor(QPalette::Disabled, role, shades.dim);
  }
  palette.setColor(QPalette::Disabled, QPalette::Highlight, shades.dim);
  return palette;
}

void UseTheme(Theme theme) {
  const Begun& begun = WhatItBeganWith();
  if (theme == Theme::kDesktop) {
    QApplication::setStyle(QStyleFactory::create(begun.style));
    QApplication::setPalette(begun.palette);
    return;
  }
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setPalette(PaletteOf(theme));
}

}  // namespace glimmerhost
