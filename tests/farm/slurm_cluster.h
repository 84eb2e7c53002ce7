// A farm of two nodes on this machine, with daemons of its own.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/child_program.h"
#include "tests/support/scratch_folder.h"

namespace farm_test {

// Asks again and again, which is all that daemons allow, until so many seconds are over. False
// then.
bool WaitFor(int seconds, const std::function<bool()>& isSo, int pauseMilliseconds = 10);

class SlurmCluster {
 public:
  // What it needs and this machine does not have; empty if there is all of it.
  static std::string Lacks();

  // Starts the daemons.
  SlurmCluster();

  // Ends them, with every process of their jobs, whatever a test has left of them.
  ~SlurmCluster();
  SlurmCluster(const SlurmCluster&) = delete;
  SlurmCluster& operator=(const SlurmCluster&) = delete;

  // False, and says why, if the nodes are not ready within a while.
  bool IsUp(std::string* why) const;

  // A program in this cluster's environment.
  lx_test::Outcome Run(const std::string& program, const std::vector<std::string>& arguments) const;

  // One of Slurm's commands, in the words of a shell.
  std::string Ask(const std::string& command) const;

  // A line a job or chunk, in the order of numbers: "1_1 COMPLETED n1".
  std::string Jobs() const;

  // Whether all jobs have ended within so many seconds.
  bool Finishes(int seconds) const;

  // Kills the node that a chunk runs on, its daemon and all that it has started there, so that no
  // one tells of it. Empty if none runs the chunk.
  std::string LoseNodeOf(int chunk) const;

 private:
  void WriteConfiguration() const;
  std::vector<int> Tasks(const std::string& variable) const;

  lx_test::ScratchFolder folder_;
};

}  // namespace farm_test
