// SPDX-License-Identifier: BSD-3-Clause
// Where the transform library is one of its own, which the module brings into the process.
#include <gtest/gtest.h>

#include "tests/border/connections.h"
#include "tests/border/loaded_module.h"
#include "tests/border/module_path.h"
#include "tests/support/shared_library.h"

namespace {

constexpr const char* kLibrary = "libfftw3_threads.so.3";

// Its work runs on threads of the module's, which have ended by then.
TEST(TransformLibrary, ComesAndGoesWithTheModuleOfItsEngineAlone) {
  lx_test::FakeHost host;
  lx_test::LoadedModule module(&host);
  { const auto render = lx_test::MakeRender(host); }
  EXPECT_EQ(lx_test::ModuleEngine() == "exact", lx_test::IsLibraryOpen(kLibrary));

  module.Unload();

  ASSERT_FALSE(lx_test::LoadedModule::IsResident());
  EXPECT_FALSE(lx_test::IsLibraryOpen(kLibrary));
}

}  // namespace
