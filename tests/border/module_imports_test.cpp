// SPDX-License-Identifier: BSD-3-Clause
// What has to be on a machine for the module to load there.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/border/dll_image.h"
#include "tests/border/module_path.h"

namespace {

using Names = std::set<std::string>;

Names Imports() {
  const auto names = lx_test::DllImage(lx_test::ModuleFile()).ImportedLibraries();
  return {names.begin(), names.end()};
}

TEST(ModuleImports, AreWindowsTheHostAndTheCompilersRuntimesAlone) {
  const Names allowed{"ADVAPI32.dll",    "KERNEL32.dll",       "USER32.dll",
                      "msvcrt.dll",      "KernelExec.dll",     "Quantel_KernelMedia.dll",
                      "libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll"};
  for (const std::string& name : Imports()) {
    EXPECT_TRUE(allowed.contains(name)) << name;
  }
}

TEST(ModuleImports, AreBothOfTheHostsLibraries) {
  const Names imports = Imports();
  EXPECT_TRUE(imports.contains("KernelExec.dll"));
  EXPECT_TRUE(imports.contains("Quantel_KernelMedia.dll"));
}

}  // namespace
