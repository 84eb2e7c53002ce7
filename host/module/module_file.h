// SPDX-License-Identifier: BSD-3-Clause
// ModuleFile: a plug-in module's library, loaded and unloaded.
#pragma once

#include <filesystem>

#include "host/support/system.h"
#include "hostframe/interfaces/module.h"

namespace glimmerhost {

class ModuleFile {
 public:
  // Loads the library and finds its two functions, without calling them. Throws Failure,
  // which names the file. Unloads it at the end; nothing of the module may be in use then.
  explicit ModuleFile(const std::filesystem::path& file);

  void Init(const quantel::cPtr<qplugin::iQpluginModule>& module) const { init_(module); }
  void CleanUp() const { cleanUp_(); }

  // The text of that name in the library or in one that it loads; null for none.
  const char* FindText(const char* name) const { return library_.Find<const char>(name); }

 private:
  SharedLibrary library_;
  qplugin::ModuleInit* init_;
  qplugin::ModuleCleanUp* cleanUp_;
};

}  // namespace glimmerhost
