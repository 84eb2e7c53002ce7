// EffectModule: a loaded module with its classes, as this host uses them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/glimmerhost/factory.h"
#include "host/glimmerhost/module_file.h"
#include "hostframe/interfaces/plugin_render.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// The module's file beside the program, where the build and the installation put it.
std::filesystem::path DefaultModuleFile();

// One at a time in the process: the host's factory is one for all modules.
class EffectModule {
 public:
  // Loads the module, sets the host's factory and has the module register its classes.
  // Throws Failure; exceptions of the module become one too.
  explicit EffectModule(const std::filesystem::path& file);

  // Cleans up and unloads. Every instance must be gone.
  ~EffectModule();
  EffectModule(const EffectModule&) = delete;
  EffectModule& operator=(const EffectModule&) = delete;

  struct ClassText {
    std::string guid;
    std::string text;
    std::string base;
  };
  std::vector<ClassText> Classes() const;

  // A new render instance of the first class that makes one. Throws Failure if there is
  // none.
  quantel::cPtr<qplugin::iQpluginRender> MakeRender() const;

 private:
  std::filesystem::path path_;
  quantel::cPtr<Factory> factory_;
  ModuleFile file_;
};

// Turns what a module has thrown into a Failure that says so. Called in a catch block.
[[noreturn]] void RethrowModuleFault();

}  // namespace glimmerhost
