// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/module_file.h"

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

template <class Function>
Function* FindFunction(const SharedLibrary& library, const char* name,
                       const std::filesystem::path& file) {
  Function* const function = library.Find<Function>(name);
  if (function == nullptr) {
    throw Failure(file.string() + ": not a module: it has no function " + name);
  }
  return function;
}

}  // namespace

ModuleFile::ModuleFile(const std::filesystem::path& file)
    : library_(file),
      init_(FindFunction<qplugin::ModuleInit>(library_, "moduleInit", file)),
      cleanUp_(FindFunction<qplugin::ModuleCleanUp>(library_, "moduleCleanUp", file)) {}

}  // namespace glimmerhost
