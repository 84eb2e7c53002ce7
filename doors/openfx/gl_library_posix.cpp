// SPDX-License-Identifier: BSD-3-Clause
#include <dlfcn.h>

#include "doors/openfx/gl_library.h"

namespace lx::openfx {

// A host that has loaded it for itself alone does not show it to the process.
GlFunction FindGlFunction(const char* name) {
  void* function = dlsym(RTLD_DEFAULT, name);
  if (function == nullptr) {
    void* library = dlopen("libGL.so.1", RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr) {
      return nullptr;
    }
    function = dlsym(library, name);
    dlclose(library);
  }
  return reinterpret_cast<GlFunction>(function);
}

}  // namespace lx::openfx
