// SPDX-License-Identifier: BSD-3-Clause
#include "host/farm/farm_engine.h"
#include "host/support/failure.h"

namespace glimmerhost {

const bool kHasSlurm = false;

std::unique_ptr<FarmEngine> MakeSlurmEngine(const SlurmSettings& /*settings*/) {
  throw UsageError(
      "--engine must be local on this system, for which Slurm has no commands, not slurm");
}

}  // namespace glimmerhost
