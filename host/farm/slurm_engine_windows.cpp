#include "host/farm/farm_engine.h"
#include "host/support/failure.h"

namespace glimmerhost {

std::unique_ptr<FarmEngine> MakeSlurmEngine(const SlurmSettings& /*settings*/) {
  throw UsageError("--engine slurm: Slurm has no commands for this system; allowed here is local");
}

}  // namespace glimmerhost
