// SPDX-License-Identifier: BSD-3-Clause
// What the README tells a new user to type, as it stands there.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/host/glimmerhost/page_commands.h"
#include "tests/host/glimmerhost/program.h"

namespace {

TEST(Readme, HasCommandsThatRunAsTheyStand) {
  const lx_test::ScratchFolder clone;
  host_test::FillClone(clone);
  const std::string commands = host_test::CommandsOf("README.md", "Use it");
  host_test::WriteScript(clone, commands);

  const lx_test::Outcome outcome = lx_test::RunChild("/bin/bash", {(clone / "commands").string()});

  ASSERT_EQ(0, outcome.code) << outcome.text << commands;
  EXPECT_EQ(6, std::count(commands.begin(), commands.end(), '\n')) << commands;
  for (const char* picture :
       {"hexagons.png", "hearts.png", "lights.png", "aperture.png", "page.png", "handles.png"}) {
    EXPECT_TRUE(std::filesystem::exists(clone / picture)) << picture;
  }
}

}  // namespace
