// SPDX-License-Identifier: BSD-3-Clause
// Colour spaces in a program without colour management.
#include <gtest/gtest.h>

#include "tests/host/glimmerhost/program.h"

namespace {

class NoColourManagement : public host_test::Program {};

TEST_F(NoColourManagement, IsSaidForEachOption) {
  const auto input = WriteInput("in.png", 16, 16);
  for (const char* option :
       {"--colour-in Linear", "--colour-out Linear", "--colour-config a.ocio"}) {
    ExpectRefusal(Render(input, "out.png", option), 2,
                  std::string(option) + ": this build has no colour management");
  }
}

}  // namespace
