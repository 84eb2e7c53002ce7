// Where the transform library is one of its own, which the module brings into the process.
#include <gtest/gtest.h>

#include "tests/border/connections.h"
#include "tests/border/loaded_module.h"
#include "tests/support/shared_library.h"

namespace {

// The library's threads may still be on their last instructions when the module goes: unmapped
// under them, the process would die now and then.
TEST(TransformLibrary, StaysWhereItsThreadsAre) {
  lx_test::FakeHost host;
  lx_test::LoadedModule module(&host);
  { const auto render = lx_test::MakeRender(host); }

  module.Unload();

  ASSERT_FALSE(lx_test::LoadedModule::IsResident());
  EXPECT_TRUE(lx_test::IsLibraryOpen("libfftw3_threads.so.3"));
}

}  // namespace
