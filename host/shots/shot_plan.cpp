// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/shot_plan.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

#include "host/shots/file_sequence.h"
#include "host/shots/frame_list.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

bool TakeCount(std::string_view* text, std::size_t* count) {
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), *count);
  if (error != std::errc() || *count == 0) {
    return false;
  }
  text->remove_prefix(static_cast<std::size_t>(end - text->data()));
  return true;
}

std::vector<int> ShotFrames(const ShotNames& names, const FileSequence& input) {
  if (!names.frames.empty()) {
    return ParseFrames("--frames", names.frames);
  }
  if (!input.HasFrames()) {
    return {1};
  }
  return input.Frames().empty() ? input.Scan() : input.Frames();
}

ShotSpan SpanOf(const std::vector<int>& frames) {
  const auto [first, last] = std::minmax_element(frames.begin(), frames.end());
  return {*first, *last};
}

// Of frames in ascending order. So many that nobody would read them are none.
std::vector<int> GapsIn(const std::vector<int>& frames) {
  constexpr std::size_t kMost = 100000;
  std::vector<int> gaps;
  for (std::size_t i = 1; i < frames.size(); ++i) {
    for (int frame = frames[i - 1] + 1; frame < frames[i]; ++frame) {
      if (gaps.size() == kMost) {
        return {};
      }
      gaps.push_back(frame);
    }
  }
  return gaps;
}

// The folder is looked through for the whole shot, whatever the list takes of it.
void SettleSpan(const ShotNames& names, const FileSequence& input, ShotPlan* plan) {
  if (names.shot) {
    plan->span = names.shot->span;
    plan->spanOrigin = names.shot->origin;
  } else if (!names.hasTimes) {
    return;
  } else if (input.HasFrames()) {
    plan->isSpanFound = input.Frames().empty();
    plan->span = SpanOf(plan->isSpanFound ? input.Scan() : input.Frames());
    plan->spanOrigin = "INPUT";
  } else if (names.frames.empty()) {
    plan->span.first = 1;
    plan->span.last = plan->filesOf ? std::optional<int>() : 1;
  }
}

}  // namespace

void CheckInShot(const ShotPlan& plan, int frame) {
  if (plan.span.Holds(frame)) {
    return;
  }
  const std::string what =
      "frame " + std::to_string(frame) + " is not in the shot " + ShowSpan(plan.span);
  if (plan.isSpanFound) {
    throw MissingInput(what + ", which are the frames that INPUT has; --shot names others");
  }
  throw UsageError(what + " (" + plan.spanOrigin +
                   "); --shot says which frames the shot has, --frames which are rendered");
}

ChunkPlaces ParseChunk(const std::string& text, std::size_t count) {
  std::string_view rest = text;
  std::size_t which = 0;
  std::size_t parts = 0;
  const bool whole = TakeCount(&rest, &which) && rest.starts_with('/') &&
                     (rest.remove_prefix(1), TakeCount(&rest, &parts)) && rest.empty();
  if (!whole || which > parts) {
    throw MustBe("--chunk", "K/N, the K-th of N parts, with K from 1 to N", text);
  }
  const auto begin = [&](std::size_t part) {
    return count / parts * part + std::min(part, count % parts);
  };
  return {begin(which - 1), begin(which)};
}

ShotPlan PlanShot(const ShotNames& names) {
  const FileSequence input("INPUT", names.input);
  const FileSequence output("-o", names.output);
  const FileSequence spread("--spread", names.spread);
  const FileSequence mask("--mask", names.mask);
  const bool fromPipe = names.input == kPipe;
  const bool toPipe = names.output == kPipe;
  if (fromPipe && !names.chunk.empty()) {
    throw UsageError("--chunk " + names.chunk + " needs files; a pipe is read from its start");
  }
  const auto filesOf = [=](int frame) {
    return FrameFiles{frame, input.File(frame), output.File(frame),
                      names.spread.empty() ? std::filesystem::path() : spread.File(frame),
                      names.mask.empty() ? std::filesystem::path() : mask.File(frame)};
  };
  if (fromPipe && names.frames.empty() && (toPipe || output.HasFrames())) {
    FileConflicts().CheckBeside(names.beside);
    ShotPlan plan;
    plan.isShot = true;
    plan.filesOf = filesOf;
    SettleSpan(names, input, &plan);
    return plan;
  }
  std::vector<int> frames = ShotFrames(names, input);
  if (frames.size() > 1 && !output.HasFrames() && !toPipe) {
    throw MustBe("-o",
                 "a name with a place for the numbers of " + std::to_string(frames.size()) +
                     " frames (out.####.png)",
                 names.output);
  }
  ShotPlan plan;
  plan.isShot = input.HasFrames() || output.HasFrames() || !names.frames.empty();
  SettleSpan(names, input, &plan);
  if (names.frames.empty() && input.HasFrames() && input.Frames().empty()) {
    plan.gaps = GapsIn(frames);
  }
  if (!plan.isSpanFound) {
    for (const int frame : frames) {
      CheckInShot(plan, frame);
    }
  }
  FileConflicts conflicts;
  for (const int frame : frames) {
    conflicts.Add(filesOf(frame));
  }
  conflicts.CheckFrames();
  conflicts.CheckBeside(names.beside);
  plan.isInPlace = conflicts.IsInPlace();
  ChunkPlaces places{0, frames.size()};
  if (!names.chunk.empty()) {
    places = ParseChunk(names.chunk, frames.size());
  }
  for (std::size_t i = places.begin; i < places.end; ++i) {
    plan.files.push_back(filesOf(frames[i]));
  }
  return plan;
}

}  // namespace glimmerhost
