#include "host/glimmerhost/module_file.h"

#include <dlfcn.h>

#include <string>
#include <system_error>

#include "host/glimmerhost/failure.h"

namespace glimmerhost {
namespace {

template <class Function>
Function* FindFunction(void* library, const char* name, const std::filesystem::path& file) {
  void* symbol = dlsym(library, name);
  if (symbol == nullptr) {
    dlclose(library);
    throw Failure(file.string() + ": it is no module: it has no function " + name);
  }
  return reinterpret_cast<Function*>(symbol);
}

}  // namespace

ModuleFile::ModuleFile(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::exists(file, error)) {
    throw Failure(file.string() + ": there is no such module file");
  }
  // An absolute path, since a bare name would be looked for in the system's folders.
  library_ = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library_ == nullptr) {
    throw Failure(file.string() + ": it is no module that can be loaded: " + dlerror());
  }
  init_ = FindFunction<qplugin::ModuleInit>(library_, "moduleInit", file);
  cleanUp_ = FindFunction<qplugin::ModuleCleanUp>(library_, "moduleCleanUp", file);
}

ModuleFile::~ModuleFile() { dlclose(library_); }

std::filesystem::path ProgramFolder() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

}  // namespace glimmerhost
