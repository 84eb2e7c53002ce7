// SPDX-License-Identifier: BSD-3-Clause
#include <dlfcn.h>

#include "tests/support/shared_library.h"

namespace lx_test {

void* OpenLibrary(const char* file) { return dlopen(file, RTLD_NOW | RTLD_LOCAL); }
void CloseLibrary(void* library) { dlclose(library); }

std::string LibraryError() {
  const char* text = dlerror();
  return text != nullptr ? text : "";
}

AnyFunction FunctionOf(void* library, const char* name) {
  return reinterpret_cast<AnyFunction>(dlsym(library, name));
}

bool IsLibraryOpen(const char* file) {
  void* library = dlopen(file, RTLD_NOW | RTLD_NOLOAD);
  if (library != nullptr) {
    dlclose(library);
  }
  return library != nullptr;
}

}  // namespace lx_test
