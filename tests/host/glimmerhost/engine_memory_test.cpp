// SPDX-License-Identifier: BSD-3-Clause
// The memory that submit asks a farm for, by the engine of the module that will run there.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/host/glimmerhost/program.h"
#include "tests/host/glimmerhost/program_here.h"

namespace {

using host_test::Outcome;
using host_test::Program;
using host_test::RunHere;

// 700 + 2 * 21 is 742, 300 + 2 * 21 is 342. Pictures take 16 * 8 bytes a pixel, 25.6 MiB; what is
// asked for is a quarter more than both, and 256 MiB.
TEST_F(Program, AsksAFarmForTheMemoryOfTheEngine) {
  const std::string input = WriteInput("in.png", 700, 300).string();
  struct {
    std::string engine;
    std::string memory;
  } const cases[] = {
      {"", "--mem=304M "},                 // fast, 768 x 360: 385 columns in 49 blocks, 12.5 MiB
      {"--engine exact", "--mem=359M "},   // 5 * 1024^2 * 8 + 2 * 1024 * 513 * 16: 56.0 MiB
      {"--engine double", "--mem=339M "},  // 5 * 1024 * 512 * 16: 40
      {"--engine single", "--mem=314M "},  // 20
  };
  for (const auto& [engine, memory] : cases) {
    const Outcome outcome = RunHere("submit '" + input + "' -o '" + (folder / "out.png").string() +
                                    "' --radius 20px --dry-run --engine slurm " + engine);
    EXPECT_EQ(0, outcome.code) << outcome.text;
    EXPECT_NE(std::string::npos, outcome.text.find(memory)) << engine << "\n" << outcome.text;
  }
}

}  // namespace
