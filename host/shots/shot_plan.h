// SPDX-License-Identifier: BSD-3-Clause
// What a render of a shot reads and writes, frame by frame, before anything is rendered.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/looks/keyframes.h"
#include "host/shots/file_conflicts.h"

namespace glimmerhost {

// The name that stands for the standard streams.
inline constexpr const char* kPipe = "-";

struct FrameFiles {
  int frame;
  std::filesystem::path input;
  std::filesystem::path output;
  std::filesystem::path spread;  // empty if there is none
};

// Names as they were typed; frames, spread and chunk may be empty.
struct ShotNames {
  std::string input;
  std::string output;
  std::string spread;
  std::string frames;  // a list; without one the input's name or its folder says
  std::string chunk;   // "2/5": the second of five parts of the list
  std::vector<NamedFile> beside{};
};

struct ShotPlan {
  std::vector<FrameFiles> files;  // in the order to render
  int lowest = 1;                 // of all frames of the shot, whatever chunk this is
  int highest = 1;
  bool isShot = false;     // false for one picture whose frame nobody named
  bool isInPlace = false;  // whether a frame's output is its own input

  // Null unless the input is a pipe without a list of frames: those go on from 1 until it ends,
  // nobody knows when. There are no files then.
  std::function<FrameFiles(int frame)> filesOf;
};

// What times of the shot's keyframes count from.
inline ShotSpan SpanOf(const ShotPlan& plan) {
  return {plan.lowest, plan.highest, static_cast<bool>(plan.filesOf)};
}

// Input and output may be kPipe. Throws UsageError for names and lists that do not go together, and
// for files that would be lost to one another; MissingInput where the input's folder has no frames.
ShotPlan PlanShot(const ShotNames& names);

// The places of a list that the chunk "K/N" takes: N parts as even as can be, the first ones
// longer; of more parts than frames, the last are empty. Throws UsageError.
struct ChunkPlaces {
  std::size_t begin;
  std::size_t end;
};
ChunkPlaces ParseChunk(const std::string& text, std::size_t count);

}  // namespace glimmerhost
