// SPDX-License-Identifier: BSD-3-Clause
// A manifest: for each frame of a shot a line of JSON that says what went in and what came out.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace glimmerhost {

// Of an output that stood there already and that no run has written down, only frame, output and
// its hash are known.
struct ManifestEntry {
  int frame = 0;
  std::string input;
  std::string inputHash;
  std::string output;
  std::string outputHash;
  std::map<std::string, std::string> parameters;  // the store's keys, values as a person types them
  std::string engine;  // of the effect; empty where lines of earlier programs do not say
  std::map<std::string, std::string> versions;  // of the program and the module
  double seconds = 0.0;                         // of the effect's own work
  std::uint64_t clippedSamples = 0;
  std::uint64_t notNumbers = 0;  // samples that were none, and became 0
};

// Written line by line, so that what a run has done stays known however it ends.
class Manifest {
 public:
  //   goOn  whether lines of an earlier run are kept, and new ones follow. Of a run that was killed
  //         the last line may be cut off: what there is of it goes
  // Throws Failure, which names the file, if it is there already and lines are not to be kept nor
  // the file to be replaced, if its lines are none of a manifest, or if it cannot be written.
  Manifest(std::filesystem::path file, bool goOn, bool replace);

  void Add(const ManifestEntry& entry);

  // Whether there is a line for the frame, of this run or one that it goes on with.
  bool Has(int frame) const { return frames_.contains(frame); }

 private:
  void GoOn();

  std::filesystem::path file_;
  std::ofstream out_;
  std::set<int> frames_;
};

// The entries of a file; of a frame that is there twice, the last one counts. Throws Failure, which
// names the file and the line, for what is no manifest; MissingInput if it is not there.
std::map<int, ManifestEntry> ReadManifest(const std::filesystem::path& file);

// Whether the output is what the entry says. Throws Failure if it cannot be read, MissingInput if
// it is not there.
bool IsAsWritten(const ManifestEntry& entry);

// The frames of the list that have no line.
std::vector<int> FramesLacking(const std::map<int, ManifestEntry>& entries,
                               const std::vector<int>& frames);

// What is wrong with the outputs, a line each: those that are not there, or not what was written.
std::vector<std::string> CheckOutputs(const std::map<int, ManifestEntry>& entries);

}  // namespace glimmerhost
