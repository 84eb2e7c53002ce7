// The module's file, loaded for the length of a scope.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "hostframe/interfaces/module.h"
#include "tests/support/fake_host.h"

namespace lx_test {

class LoadedModule {
 public:
  explicit LoadedModule(FakeHost* host) : library_(dlopen(MODULE_FILE, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(nullptr, library_) << dlerror();
    init_ = reinterpret_cast<qplugin::ModuleInit*>(dlsym(library_, "moduleInit"));
    cleanUp_ = reinterpret_cast<qplugin::ModuleCleanUp*>(dlsym(library_, "moduleCleanUp"));
    init_(cPtr<qplugin::iQpluginModule>(new FakeModule(&host->log)));
  }
  ~LoadedModule() { Unload(); }
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;

  void CleanUp() const { cleanUp_(); }

  void Unload() {
    if (library_ != nullptr) {
      dlclose(library_);
      library_ = nullptr;
    }
  }

  static bool IsResident() {
    void* again = dlopen(MODULE_FILE, RTLD_NOW | RTLD_NOLOAD);
    if (again != nullptr) {
      dlclose(again);
    }
    return again != nullptr;
  }

 private:
  void* library_;
  qplugin::ModuleInit* init_ = nullptr;
  qplugin::ModuleCleanUp* cleanUp_ = nullptr;
};

}  // namespace lx_test
