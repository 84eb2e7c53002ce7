// SPDX-License-Identifier: BSD-3-Clause
// A farm of two nodes on this machine, with daemons of its own.
//
// One process starts it, others use it one after the other, and the last one ends it. Where it is
// stands in a note, a file whose name they all know.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/child_program.h"

namespace farm_test {

// Asks again and again, which is all that daemons allow, until so many seconds are over. False
// then.
bool WaitFor(int seconds, const std::function<bool()>& isSo, int pauseMilliseconds = 10);

class SlurmCluster {
 public:
  // What it needs and this machine does not have; empty if there is all of it.
  static std::string Lacks();

  // Starts the daemons in a new folder, and writes the note. A farm that the note tells of already
  // was left behind by a run that was cut off, and ends first.
  static void Start(const std::filesystem::path& note);

  // Ends the daemons, with every process of their jobs, whatever tests have left of them, and
  // removes folder and note. Nothing happens where there is no note.
  static void End(const std::filesystem::path& note);

  // The one of the note; jobs of before are of no interest to it. None has ended unseen: whoever
  // had the farm before leaves it without jobs.
  explicit SlurmCluster(const std::filesystem::path& note);

  // Starts again the nodes that were lost. False, and says why, if not all nodes are ready within a
  // while.
  bool IsUp(std::string* why) const;

  // Cancels what is left of the jobs. False if they do not end.
  bool Clear() const;

  // A program in this cluster's environment.
  lx_test::Outcome Run(const std::string& program, const std::vector<std::string>& arguments) const;

  // One of Slurm's commands, in the words of a shell.
  std::string Ask(const std::string& command) const;

  // A line a job or chunk since this object was made, in the order of numbers: "1_1 COMPLETED n1".
  std::string Jobs() const;

  // Whether all jobs have ended within so many seconds.
  bool Finishes(int seconds) const;

  // Kills the node that a chunk runs on, its daemon and all that it has started there, so that no
  // one tells of it. Empty if none runs the chunk.
  std::string LoseNodeOf(int chunk) const;

 private:
  explicit SlurmCluster() = default;

  void WriteConfiguration() const;
  void StartNode(const std::string& node) const;
  void EndDaemons() const;
  std::vector<std::string> AllJobs() const;
  std::vector<int> Tasks(const std::string& variable) const;

  std::filesystem::path folder_;
  int lastOfOthers_ = 0;
};

}  // namespace farm_test
