// SPDX-License-Identifier: BSD-3-Clause
#include "host/farm/chunk_report.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

#include "host/render/frame_line.h"
#include "host/shots/manifest_check.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

// What ends the lines of a process that reports to machines.
bool IsSummary(const std::string& line) { return line.starts_with("{\"done\":"); }

}  // namespace

void ChunkReport::Line(std::size_t chunk, const std::string& line) {
  if (const std::optional<FrameLine> told = ParseFrameLine(line)) {
    const FrameReport& frame = told->report;
    chunks_[chunk].reported.insert(frame.frame);
    chunks_[chunk].failed |=
        frame.state == FrameState::kFailed || frame.state == FrameState::kMissing;
    report_->Add(frame);
  } else if (!IsSummary(line)) {
    // What is so for the whole shot, each chunk says.
    if (passed_.insert(line).second) {
      report_->Pass(line);
    }
  }
}

// A process that failed without a word about a frame has failed at the first one that it has not
// told of.
bool ChunkReport::Ended(std::size_t chunk, const ProcessEnd& end) {
  if (end.code == kExitDone && end.signal == 0) {
    return true;
  }
  // What is wrong with the command is wrong for every chunk.
  misused_ |= end.code == kExitUsage;
  const Chunk& told = chunks_[chunk];
  const std::vector<int> frames = job_.Frames(chunk);
  const auto first = std::find_if(frames.begin(), frames.end(),
                                  [&](int frame) { return !told.reported.contains(frame); });
  if (!told.failed && first != frames.end() && !misused_) {
    FrameReport frame;
    frame.frame = *first;
    frame.state = end.code == kExitMissing ? FrameState::kMissing : FrameState::kFailed;
    frame.fault = "the process of chunk " + std::to_string(chunk) + " " + ShowEnd(end);
    report_->Add(frame);
  }
  return keepGoing_ && !misused_;
}

int ChunkReport::Finish(const FarmJob& job, std::ostream& out) {
  if (misused_) {
    return kExitUsage;
  }
  report_->Finish();
  if (report_->Count(FrameState::kFailed) > 0) {
    return kExitFailed;
  }
  if (report_->Count(FrameState::kMissing) > 0) {
    return kExitMissing;
  }
  std::vector<std::filesystem::path> manifests;
  for (std::size_t chunk = 1; chunk <= job.chunks; ++chunk) {
    manifests.push_back(job.Manifest(chunk));
  }
  return TellOf(CheckManifests(manifests, job.frames), out);
}

}  // namespace glimmerhost
