// SPDX-License-Identifier: BSD-3-Clause
// The farm that the other tests of this program share: CTest runs these before and after them.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/host/farm/slurm_cluster.h"

namespace {

using farm_test::SlurmCluster;

TEST(SlurmFarm, Starts) {
  if (const std::string lacks = SlurmCluster::Lacks(); !lacks.empty()) {
    GTEST_SKIP() << lacks;
  }
  SlurmCluster::Start(SLURM_NOTE);

  std::string why;
  EXPECT_TRUE(SlurmCluster(SLURM_NOTE).IsUp(&why)) << why;
}

TEST(SlurmFarm, Ends) {
  SlurmCluster::End(SLURM_NOTE);

  EXPECT_FALSE(std::filesystem::exists(SLURM_NOTE));
}

}  // namespace
