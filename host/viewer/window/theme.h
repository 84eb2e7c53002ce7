// SPDX-License-Identifier: BSD-3-Clause
// Light and dark, whatever the desktop has.
#pragma once

#include <QPalette>

namespace glimmerhost {

enum class Theme { kDesktop, kLight, kDark };

// Gives all windows of the application the theme. kDesktop is what it had when it began.
void UseTheme(Theme theme);

// The palette of a theme that is not the desktop's.
QPalette PaletteOf(Theme theme);

}  // namespace glimmerhost
