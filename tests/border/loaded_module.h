// SPDX-License-Identifier: BSD-3-Clause
// The module's file, loaded for the length of a scope.
#pragma once

#include <gtest/gtest.h>

#include "hostframe/interfaces/module.h"
#include "tests/border/module_path.h"
#include "tests/support/fake_host.h"
#include "tests/support/shared_library.h"

namespace lx_test {

class LoadedModule {
 public:
  explicit LoadedModule(FakeHost* host, const char* file = ModuleFile())
      : library_(OpenLibrary(file)) {
    EXPECT_NE(nullptr, library_) << LibraryError();
    init_ = reinterpret_cast<qplugin::ModuleInit*>(FunctionOf(library_, "moduleInit"));
    cleanUp_ = reinterpret_cast<qplugin::ModuleCleanUp*>(FunctionOf(library_, "moduleCleanUp"));
    init_(cPtr<qplugin::iQpluginModule>(new FakeModule(&host->log)));
  }
  ~LoadedModule() { Unload(); }
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;

  void CleanUp() const { cleanUp_(); }

  void Unload() {
    if (library_ != nullptr) {
      CloseLibrary(library_);
      library_ = nullptr;
    }
  }

  void* Library() const { return library_; }

  static bool IsResident() { return IsLibraryOpen(ModuleFile()); }

 private:
  void* library_;
  qplugin::ModuleInit* init_ = nullptr;
  qplugin::ModuleCleanUp* cleanUp_ = nullptr;
};

}  // namespace lx_test
