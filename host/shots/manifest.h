// SPDX-License-Identifier: BSD-3-Clause
// A manifest: for each frame of a shot a line of JSON that says what went in and what came out.
//
// Several programs may keep one: lines are added whole, one program after the other, and each sees
// those of the others.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/shots/file_hash.h"
#include "host/support/locked_file.h"

namespace glimmerhost {

struct ManifestEntry {
  int frame = 0;
  std::string input;
  std::string inputHash;
  std::string output;
  std::string outputHash;
  std::map<std::string, std::string> parameters;  // the store's keys, values as a person types them
  std::string engine;        // of the effect; empty where lines of earlier programs do not say
  std::string precision{};   // float or 16: the library's road or the module's; empty likewise
  std::string arithmetic{};  // that decided how samples are rounded; empty likewise
  std::string shot{};        // the frames that times count in; empty where none does

  // What decides the output's samples, so that it is known when they are out of date. Empty where
  // lines of earlier programs do not say: nothing is known then.
  std::string digest{};
  std::map<std::string, FileState> sources{};  // files that were read, by what they are for
  int width = 0;                               // of the input as it was read
  int height = 0;
  std::map<std::string, std::string> versions;  // of the program and the module
  double seconds = 0.0;                         // of the effect's own work
  std::uint64_t clippedSamples = 0;
  std::uint64_t notNumbers = 0;  // samples that were none, and became 0
};

// Written line by line, so that what a run has done stays known however it ends. Any thread may
// call.
class Manifest {
 public:
  // Lines of an earlier run are kept, and new ones follow. Of a run that was killed the last line
  // may be cut off: what there is of it goes.
  //   goOn     whether frames of earlier runs may be left out
  //   replace  whether outputs are replaced; so is a file that is no manifest then
  // Throws Failure, which names the file, if it is there already and neither is so, if its lines
  // are none of a manifest, or if it cannot be written.
  Manifest(std::filesystem::path file, bool goOn, bool replace);

  const std::filesystem::path& File() const { return file_; }

  // On the disk when it comes back. Throws Failure if it cannot be written.
  void Add(const ManifestEntry& entry);

  // The last line of a frame, whoever wrote it; none if there is none. Throws Failure for lines
  // that are none.
  std::optional<ManifestEntry> Last(int frame);

  // Whether any line of the frame says that its output has this hash. A run that is killed may
  // leave the line of an output that never came to its place: then an earlier line tells of the one
  // there.
  bool Explains(int frame, const std::string& outputHash);

 private:
  struct Lines {
    ManifestEntry last;
    std::set<std::string> outputHashes;
  };

  // While it lives, no other program and no other thread adds lines.
  class Turn;

  void CatchUp();
  void BeginAnew();
  void Take(const ManifestEntry& entry);

  std::filesystem::path file_;
  std::unique_ptr<LockedFile> out_;
  std::mutex mutex_;
  std::map<int, Lines> frames_;
  std::uint64_t known_ = 0;  // bytes whose lines are in frames_
  int lines_ = 0;
};

// The entries of a file; of a frame that is there twice, the last one counts. Throws Failure, which
// names the file and the line, for what is no manifest; MissingInput if it is not there.
std::map<int, ManifestEntry> ReadManifest(const std::filesystem::path& file);

// All of its lines, in their order. Throws likewise.
std::vector<ManifestEntry> ReadManifestLines(const std::filesystem::path& file);

// Whether the output is what the entry says. Throws Failure if it cannot be read, MissingInput if
// it is not there.
bool IsAsWritten(const ManifestEntry& entry);

// The frames of the list that have no line.
std::vector<int> FramesLacking(const std::map<int, ManifestEntry>& entries,
                               const std::vector<int>& frames);

// What is wrong with the outputs, a line each: those that are not there, or not what was written.
std::vector<std::string> CheckOutputs(const std::map<int, ManifestEntry>& entries);

}  // namespace glimmerhost
