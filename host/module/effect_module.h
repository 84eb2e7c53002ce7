// SPDX-License-Identifier: BSD-3-Clause
// EffectModule: a loaded module with its classes, as this host uses them.
#pragma once

#include <string>
#include <vector>

#include "host/module/factory.h"
#include "host/module/module_choice.h"
#include "host/module/module_file.h"
#include "host/module/trace/trace.h"
#include "hostframe/interfaces/plugin_render.h"
#include "hostframe/interfaces/plugin_ui.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// One at a time in the process: the host's factory is one for all modules.
class EffectModule {
 public:
  // Loads the module, sets the host's factory and has the module register its classes.
  // Throws Failure; exceptions of the module become one too.
  //   trace  says the calls between host and module; null for none
  explicit EffectModule(ModuleChoice choice, Trace* trace = nullptr);

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

  // A new instance of the first class that makes one of that kind. Throws Failure if there
  // is none.
  quantel::cPtr<qplugin::iQpluginRender> MakeRender() const;
  quantel::cPtr<qplugin::iQpluginUI> MakeUi() const;

  // The engine that its instances work with.
  const lx::Footprint& Engine() const { return *choice_.engine; }

  // Its file, and what that says of itself.
  const ModuleChoice& Choice() const { return choice_; }

  // The text of that name in its library or in one that it loads; null for none.
  const char* FindText(const char* name) const { return file_.FindText(name); }

  Trace* GetTrace() const { return trace_; }

 private:
  template <class Interface>
  bool MayMake(quantel::iFactory::iConstructor* constructor) const;
  template <class Interface>
  quantel::cPtr<Interface> Make(const char* kind) const;

  ModuleChoice choice_;
  Trace* trace_;
  quantel::cPtr<Factory> factory_;
  ModuleFile file_;
};

// Turns what a module has thrown into a Failure that says so. Called in a catch block.
[[noreturn]] void RethrowModuleFault();

}  // namespace glimmerhost
