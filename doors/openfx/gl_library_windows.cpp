// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "doors/openfx/gl_library.h"

namespace lx::openfx {

GlFunction FindGlFunction(const char* name) {
  const HMODULE library = GetModuleHandleA("opengl32.dll");
  return library != nullptr ? reinterpret_cast<GlFunction>(GetProcAddress(library, name)) : nullptr;
}

}  // namespace lx::openfx
