// SPDX-License-Identifier: BSD-3-Clause
// ViewedClip: what a person has opened, one picture or a sequence of them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/looks/shot_span.h"
#include "host/shots/file_sequence.h"

namespace glimmerhost {

// Fixed once it is made: any thread may read it.
class ViewedClip {
 public:
  // Looks through the folder of a sequence, and opens no picture.
  //   name  a file, or a name with a place for the frame's number: shot.####.exr
  // Throws MissingInput where nothing of that name is there, UsageError for a name that cannot be
  // one, and Failure for a film, which says what opens it.
  explicit ViewedClip(const std::string& name);

  // As it was opened.
  const std::string& Input() const { return files_.Name(); }

  bool IsSequence() const { return files_.HasFrames(); }

  // Ascending, at least one; 1 alone for one picture. Those between them that the folder lacks are
  // not there.
  const std::vector<int>& Frames() const { return frames_; }

  // From the first frame to the last.
  ShotSpan Span() const { return {frames_.front(), frames_.back()}; }

  // Of any frame, also of one that is not there; of one picture, always its own.
  std::filesystem::path File(int frame) const { return files_.File(frame); }

  // For a window's title: the name without its folder.
  std::string Title() const;

 private:
  FileSequence files_;
  std::vector<int> frames_;
};

// The sequence that a numbered file belongs to: "shot.####.exr" in the folder of shot.1001.exr.
// Empty where the folder has no other frame of it, or the name holds no number.
std::string SequenceOf(const std::filesystem::path& file);

}  // namespace glimmerhost
