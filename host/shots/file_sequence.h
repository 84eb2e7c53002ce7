// SPDX-License-Identifier: BSD-3-Clause
// Names of files with a place for the frame's number: shot.####.exr, shot.%04d.exr.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace glimmerhost {

// One # stands for four digits, several for as many as there are; so does each @; %d and %04d
// are as in C. Smaller numbers are filled up with zeros, a minus counts as a digit. A list of
// frames may stand before the place (shot.1-100#.exr), behind a dot, an underscore or nothing.
class FileSequence {
 public:
  // A name without such a place is one file. So is the name of a file that is there, whatever
  // it looks like.
  //   option  how the name's origin is called in an error
  // Throws UsageError for two places, or one in a folder's name.
  FileSequence(const std::string& option, const std::string& name);

  bool HasFrames() const { return width_ >= 0; }

  // As it was given.
  const std::string& Name() const { return name_; }

  // The file of a frame; of one file, that file.
  std::filesystem::path File(int frame) const;

  // What the files have in common, for a file that is about all of them: "shot" in the folder of
  // shot.####.exr, and of shot.exr. Never without a name.
  std::filesystem::path Stem() const;

  // The list that the name holds; empty if it holds none.
  const std::vector<int>& Frames() const { return frames_; }

  // The frames of the files that are there, in ascending order. Throws MissingInput if there is
  // none, or no such folder; Failure if the folder cannot be read.
  std::vector<int> Scan() const;

 private:
  void TakeFrames(const std::string& option);

  std::string name_;
  std::filesystem::path folder_;
  std::string before_;  // of the file's name
  std::string after_;
  int width_ = -1;  // digits at least; -1 where there is no place
  std::vector<int> frames_;
};

}  // namespace glimmerhost
