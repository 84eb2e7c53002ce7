// SPDX-License-Identifier: BSD-3-Clause
// What a render of a shot reads and writes, frame by frame, before anything is rendered.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/looks/shot_span.h"
#include "host/shots/file_conflicts.h"

namespace glimmerhost {

// The name that stands for the standard streams.
inline constexpr const char* kPipe = "-";

struct FrameFiles {
  int frame;
  std::filesystem::path input;
  std::filesystem::path output;
  std::filesystem::path spread;  // empty if there is none
  std::filesystem::path mask{};  // likewise
};

// The frames of the shot as a person gives them.
struct GivenSpan {
  std::string origin;  // "--shot", or "film.toml: shot"
  ShotSpan span;
};

// Names as they were typed; frames, spread, mask and chunk may be empty.
struct ShotNames {
  std::string input;
  std::string output;
  std::string spread;
  std::string frames;  // a list; without one the input's name or its folder says
  std::string chunk;   // "2/5": the second of five parts of the list
  std::vector<NamedFile> beside{};
  std::optional<GivenSpan> shot{};  // none for the frames that INPUT has
  bool hasTimes = false;            // whether any time counts in the shot
  std::string mask{};
};

struct ShotPlan {
  std::vector<FrameFiles> files;  // in the order to render
  bool isShot = false;            // false for one picture whose frame nobody named
  bool isInPlace = false;         // whether a frame's output is its own input

  // What times of keyframes count in, whichever frames are rendered: what was given; or else the
  // frames of INPUT, from the list in its name or from its folder. Unknown where no time asks for
  // it; the ends of a pipe and of a still with a list of frames are.
  ShotSpan span{};
  bool isSpanFound = false;  // in the folder: files that come later are not in it
  std::string spanOrigin{};  // of one that was given

  // Frames that the folder lacks between those that it has, where it says what is rendered.
  std::vector<int> gaps{};

  // Null unless the input is a pipe without a list of frames: those go on from 1 until it ends,
  // nobody knows when. There are no files then.
  std::function<FrameFiles(int frame)> filesOf;
};

// Input and output may be kPipe. Throws UsageError for names and lists that do not go together,
// for files that would be lost to one another, and for a frame outside of a span that was given;
// MissingInput where the input's folder has no frames.
ShotPlan PlanShot(const ShotNames& names);

// For frames that come one by one, or whose file may have come after the folder was looked through.
// Throws UsageError for one outside of a span that was given, and MissingInput for one outside of
// what was found.
void CheckInShot(const ShotPlan& plan, int frame);

// The places of a list that the chunk "K/N" takes: N parts as even as can be, the first ones
// longer; of more parts than frames, the last are empty. Throws UsageError.
struct ChunkPlaces {
  std::size_t begin;
  std::size_t end;
};
ChunkPlaces ParseChunk(const std::string& text, std::size_t count);

}  // namespace glimmerhost
