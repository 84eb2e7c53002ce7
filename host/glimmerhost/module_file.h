// ModuleFile: a plug-in module's library, loaded and unloaded.
#pragma once

#include <filesystem>

#include "hostframe/interfaces/module.h"

namespace glimmerhost {

class ModuleFile {
 public:
  // Loads the library and finds its two functions, without calling them. Throws Failure,
  // which names the file.
  explicit ModuleFile(const std::filesystem::path& file);

  // Unloads it. Nothing of the module may be in use.
  ~ModuleFile();
  ModuleFile(const ModuleFile&) = delete;
  ModuleFile& operator=(const ModuleFile&) = delete;

  void Init(const quantel::cPtr<qplugin::iQpluginModule>& module) const { init_(module); }
  void CleanUp() const { cleanUp_(); }

 private:
  void* library_;
  qplugin::ModuleInit* init_ = nullptr;
  qplugin::ModuleCleanUp* cleanUp_ = nullptr;
};

// The folder of the running program.
std::filesystem::path ProgramFolder();

}  // namespace glimmerhost
