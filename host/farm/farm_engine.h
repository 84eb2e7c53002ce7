// SPDX-License-Identifier: BSD-3-Clause
// FarmEngine: where the chunks of a job are rendered.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "host/farm/farm_job.h"
#include "host/support/child_process.h"

namespace glimmerhost {

class FarmEngine {
 public:
  FarmEngine() = default;
  virtual ~FarmEngine() = default;
  FarmEngine(const FarmEngine&) = delete;
  FarmEngine& operator=(const FarmEngine&) = delete;

  // Prints what Run would do, in the words of a shell.
  virtual void Show(const FarmJob& job, std::ostream& out) const = 0;

  // Renders the chunks and checks them, or has it done. Returns the program's exit code. Throws
  // Failure or UsageError.
  virtual int Run(const FarmJob& job, std::ostream& out) = 0;
};

// What processes on this machine say. One call at a time, on any thread.
class ChunkListener {
 public:
  ChunkListener() = default;
  virtual ~ChunkListener() = default;
  ChunkListener(const ChunkListener&) = delete;
  ChunkListener& operator=(const ChunkListener&) = delete;

  // A line of a chunk's process.
  virtual void Line(std::size_t chunk, const std::string& line) = 0;

  // The process has ended. False: chunks that have not been started are not started any more.
  virtual bool Ended(std::size_t chunk, const ProcessEnd& end) = 0;

  // All have ended. Returns the program's exit code.
  virtual int Finish(const FarmJob& job, std::ostream& out) = 0;
};

// Processes on this machine, so many at once. Run comes back when all have ended. The listener
// must outlive the engine.
std::unique_ptr<FarmEngine> MakeLocalEngine(std::size_t processes, ChunkListener* listener);

// A job of an array for every chunk, and one for the check that waits for them. Run comes back
// when they have been handed over.
struct SlurmSettings {
  std::uint64_t memory = 0;          // bytes of a chunk; 0 for what Slurm gives
  std::string processors;            // a number; empty for what Slurm gives
  std::string logBefore;             // the beginning of the names of logs
  std::vector<std::string> options;  // of sbatch, over all of these
};

// Whether Slurm is for this system at all.
extern const bool kHasSlurm;

// Throws UsageError on a system that Slurm is not for.
std::unique_ptr<FarmEngine> MakeSlurmEngine(const SlurmSettings& settings);

}  // namespace glimmerhost
