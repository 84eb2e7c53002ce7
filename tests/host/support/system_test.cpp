// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/system.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

// A container, or a system that starts, may have no /proc.
TEST(ProgramFile, IsFoundWhereTheSystemHasNoLinkToIt) {
  const std::filesystem::path file = glimmerhost::ProgramFile();

  EXPECT_TRUE(std::filesystem::is_regular_file(file)) << file;
  EXPECT_TRUE(std::filesystem::equivalent(file, glimmerhost::ProgramFile("/no/such/link")));
}

}  // namespace
