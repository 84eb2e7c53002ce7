// SPDX-License-Identifier: BSD-3-Clause
// The module's two exported functions.
#pragma once

#include "hostframe/interfaces/module.h"
#include "hostframe/interfaces/visibility.h"

extern "C" {

// Saves the module's two texts and registers the UI class, then the render class, with
// the host's factory. Lets go of the module before it returns. A second call registers
// both once more. Exceptions of the host pass; what was registered before stays.
QTL_EXPORT void moduleInit(quantel::cPtr<qplugin::iQpluginModule> module);

// Does nothing: the classes leave the factory when the library is unloaded.
QTL_EXPORT void moduleCleanUp();
}
