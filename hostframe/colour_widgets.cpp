// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/colour_widgets.h"

namespace allplugins {
namespace {

using quantel::cRect4;

constexpr const char16_t* kButton = u"lxColourButtonWidgetC";
constexpr const char16_t* kBox = u"lxColourBoxWidgetC";
constexpr const char16_t* kKeyBox = u"lxColourBox_PRM";

// Cells of the page: column, row, width, height.
constexpr cRect4 kButtonCell{30.0F, 0.0F, 10.0F, 1.0F};
constexpr cRect4 kBoxCell{30.0F, 1.0F, 10.0F, 5.0F};

}  // namespace

void AddColourWidgets(qplugin::iQpluginDialog* dialog) {
  dialog->addButton(kButton, keyColourButton, kButtonCell, u"Close Colour Box");
  dialog->setWidgetVisible(kButton, false);
  dialog->addColourBox(kBox, kKeyBox, kBoxCell, quantel::cColour::kWhite);
  dialog->setWidgetVisible(kBox, false);
}

void ShowColourWidgets(qplugin::iQpluginDialog* dialog, bool visible) {
  dialog->setWidgetVisible(kButton, visible);
  dialog->setWidgetVisible(kBox, visible);
}

void RequestColour(qplugin::iQpluginDialog* dialog, qplugin::iQpluginParams* store) {
  if (!dialog->isWidgetVisible(kBox)) {
    ShowColourWidgets(dialog, true);
    return;
  }
  // Intended: the colour is asked for and goes nowhere. Nothing of the effect is coloured.
  store->getColour(kKeyBox, quantel::cColour::kWhite).toRGB();
}

}  // namespace allplugins
