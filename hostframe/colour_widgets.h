// SPDX-License-Identifier: BSD-3-Clause
// The colour box of the page, and the button that closes it: two widgets that drive nothing.
#pragma once

#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/ui_result.h"

namespace allplugins {

// A press of the button arrives as parameterChanged with this key.
inline constexpr const char16_t* keyColourButton = u"lxColourButton_PRM";

// Makes both, hidden. A second call makes them again.
void AddColourWidgets(qplugin::iQpluginDialog* dialog);

// Button first, then the box.
void ShowColourWidgets(qplugin::iQpluginDialog* dialog, bool visible);

// Opens the widgets if the box is hidden, or reads the colour of the open box.
void RequestColour(qplugin::iQpluginDialog* dialog, qplugin::iQpluginParams* store);

}  // namespace allplugins
