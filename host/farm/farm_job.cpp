// SPDX-License-Identifier: BSD-3-Clause
#include "host/farm/farm_job.h"

#include <algorithm>

#include "host/shots/frame_list.h"
#include "host/shots/shot_plan.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

std::string Padded(std::size_t number, int digits) {
  std::string text = std::to_string(number);
  const auto wanted = static_cast<std::size_t>(digits);
  return text.size() < wanted ? std::string(wanted - text.size(), '0') + text : text;
}

}  // namespace

void FarmJob::Cut(std::size_t most) { chunks = (frames.size() + most - 1) / most; }

std::vector<int> FarmJob::Frames(std::size_t chunk) const {
  const ChunkPlaces places =
      ParseChunk(std::to_string(chunk) + "/" + std::to_string(chunks), frames.size());
  return {frames.begin() + static_cast<std::ptrdiff_t>(places.begin),
          frames.begin() + static_cast<std::ptrdiff_t>(places.end)};
}

int FarmJob::PlaceDigits() const {
  constexpr int kFewest = 4;
  return std::max(kFewest, static_cast<int>(std::to_string(chunks).size()));
}

std::string FarmJob::Place(std::size_t chunk) const {
  return Padded(chunk, PlaceDigits()) + "-of-" + Padded(chunks, PlaceDigits());
}

std::filesystem::path FarmJob::Manifest(std::size_t chunk) const {
  return Utf8Path(manifestBefore + Place(chunk) + manifestBehind);
}

std::vector<std::string> FarmJob::Arguments(std::size_t chunk) const {
  std::vector<std::string> arguments{"render"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  arguments.push_back("--chunk=" + std::to_string(chunk) + "/" + std::to_string(chunks));
  arguments.push_back("--manifest=" + Manifest(chunk).string());
  // Behind this nothing is an option, whatever it looks like.
  arguments.emplace_back("--");
  arguments.push_back(input);
  return arguments;
}

std::vector<std::string> FarmJob::CheckArguments() const {
  std::vector<std::string> arguments{"check", FramesOption(frames), "--"};
  for (std::size_t chunk = 1; chunk <= chunks; ++chunk) {
    arguments.push_back(Manifest(chunk).string());
  }
  return arguments;
}

std::string FramesOption(const std::vector<int>& frames) {
  return "--frames=" + ShowFrames(frames);
}

}  // namespace glimmerhost
