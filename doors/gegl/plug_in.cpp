// SPDX-License-Identifier: BSD-3-Clause
// The two names that GEGL asks a file among its plug-ins for.
#include "doors/gegl/defocus_operation.h"

extern "C" G_MODULE_EXPORT const GeglModuleInfo* gegl_module_query(GTypeModule* /*module*/) {
  static const GeglModuleInfo info = {GEGL_MODULE_ABI_VERSION};
  return &info;
}

extern "C" G_MODULE_EXPORT gboolean gegl_module_register(GTypeModule* module) {
  glimmerblur_gegl::RegisterDefocusOperation(module);
  return TRUE;
}
