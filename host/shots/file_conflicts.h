// SPDX-License-Identifier: BSD-3-Clause
// Files of a shot that are one and the same, where that would lose one of them or let a frame
// depend on those before it.
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

namespace glimmerhost {

struct FrameFiles;

// A file beside the frames' own, and the option that names it.
struct NamedFile {
  std::string option;
  std::string name;  // empty if there is none
  bool isWritten;
};

// Whatever the names that are typed, links and folders are followed. Files of a sequence are told
// apart by the links of their folder alone: a shot may have a million of them.
class FileConflicts {
 public:
  // Takes the frames in, one after another, all of the shot's, whatever chunk is rendered.
  void Add(const FrameFiles& files);

  // Throws UsageError if one frame reads what another one writes: it would be read before or after
  // that, as the order and the chunk have it.
  void CheckFrames() const;

  // Throws UsageError if one of these is written and also another one, or a frame's. A look may be
  // saved into the file that it comes from, which has been read by then.
  void CheckBeside(const std::vector<NamedFile>& beside) const;

  // Whether a frame writes what it reads itself.
  bool IsInPlace() const { return isInPlace_; }

 private:
  struct Use {
    int frame;
    std::filesystem::path file;
  };

  std::string Place(const std::filesystem::path& file) const;
  static std::string Target(const std::filesystem::path& file);
  void AddRead(const std::filesystem::path& file, int frame);

  mutable std::unordered_map<std::string, std::string> folders_;  // as they are, by their names
  std::unordered_map<std::string, Use> written_;
  std::unordered_map<std::string, std::vector<Use>> read_;  // two of a file at most
  bool isInPlace_ = false;
};

}  // namespace glimmerhost
