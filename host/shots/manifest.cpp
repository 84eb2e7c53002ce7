// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/manifest.h"

#include <cstddef>
#include <exception>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/shots/file_hash.h"
#include "host/support/failure.h"
#include "host/support/input_file.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

using Json = nlohmann::ordered_json;

Json ToJson(const FileState& state) {
  return {{"size", state.size}, {"time", state.time}, {"hash", state.hash}};
}

Json ToJson(const ManifestEntry& entry) {
  Json json = {{"frame", entry.frame},
               {"input", entry.input},
               {"input_hash", entry.inputHash},
               {"output", entry.output},
               {"output_hash", entry.outputHash},
               {"parameters", entry.parameters},
               {"engine", entry.engine},
               {"precision", entry.precision},
               {"arithmetic", entry.arithmetic},
               {"versions", entry.versions},
               {"seconds", entry.seconds},
               {"clipped_samples", entry.clippedSamples},
               {"not_numbers", entry.notNumbers}};
  if (!entry.shot.empty()) {
    json["shot"] = entry.shot;
  }
  if (!entry.digest.empty()) {
    json["width"] = entry.width;
    json["height"] = entry.height;
    for (const auto& [name, state] : entry.sources) {
      json["sources"][name] = ToJson(state);
    }
    json["digest"] = entry.digest;
  }
  return json;
}

ManifestEntry FromJson(const Json& json) {
  ManifestEntry entry;
  json.at("frame").get_to(entry.frame);
  json.at("input").get_to(entry.input);
  json.at("input_hash").get_to(entry.inputHash);
  json.at("output").get_to(entry.output);
  json.at("output_hash").get_to(entry.outputHash);
  json.at("parameters").get_to(entry.parameters);
  entry.engine = json.value("engine", "");
  entry.precision = json.value("precision", "");
  entry.arithmetic = json.value("arithmetic", "");
  json.at("versions").get_to(entry.versions);
  json.at("seconds").get_to(entry.seconds);
  json.at("clipped_samples").get_to(entry.clippedSamples);
  json.at("not_numbers").get_to(entry.notNumbers);
  entry.shot = json.value("shot", "");
  entry.digest = json.value("digest", "");
  entry.width = json.value("width", 0);
  entry.height = json.value("height", 0);
  const Json sources = json.value("sources", Json::object());
  for (const auto& [name, state] : sources.items()) {
    entry.sources[name] = {state.at("size"), state.at("time"), state.at("hash")};
  }
  return entry;
}

// Whether that may be the beginning of a line, and not what another kind of file ends in.
bool IsBeginning(std::string_view text) {
  constexpr std::string_view kFirst = "{\"frame\":";
  return text.starts_with(kFirst) || kFirst.starts_with(text);
}

//   before  how many lines the file has before these
std::vector<ManifestEntry> ReadLines(const std::filesystem::path& file, const std::string& text,
                                     int before) {
  std::vector<ManifestEntry> entries;
  int number = before;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    ++number;
    try {
      entries.push_back(FromJson(Json::parse(line)));
    } catch (const Json::exception&) {
      throw Failure(file.string() + ":" + std::to_string(number) + ": not a line of a manifest");
    }
  }
  return entries;
}

Failure CannotBeWritten(const std::filesystem::path& file) {
  return Failure(file.string() + ": cannot be written");
}

}  // namespace

// Where the file system has no locks, lines are still added at once, and at the end.
class Manifest::Turn {
 public:
  explicit Turn(Manifest* manifest) : hold_(manifest->mutex_), file_(*manifest->out_) {
    file_.Lock();
  }
  ~Turn() { file_.Unlock(); }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  std::lock_guard<std::mutex> hold_;
  LockedFile& file_;
};

Manifest::Manifest(std::filesystem::path file, bool goOn, bool replace) : file_(std::move(file)) {
  std::error_code error;
  if (!goOn && !replace && std::filesystem::exists(file_, error)) {
    throw Failure(file_.string() +
                  ": exists already; --skip-existing goes on with it, and --overwrite renders all "
                  "frames anew");
  }
  out_ = LockedFile::Open(file_, LockedFile::How::kGoThere, &error);
  if (!out_) {
    throw CannotBeWritten(file_);
  }
  const Turn turn(this);
  try {
    CatchUp();
  } catch (const Failure&) {
    // Not a manifest: one that is would tell of frames that this run leaves alone.
    if (goOn || !replace) {
      throw;
    }
    BeginAnew();
    if (out_->IsRegular() && !out_->Truncate(0)) {
      throw CannotBeWritten(file_);
    }
  }
}

void Manifest::BeginAnew() {
  frames_.clear();
  known_ = 0;
  lines_ = 0;
}

// Takes the lines that others have added. What a program left of a line when it was killed goes:
// nobody else is adding one now.
void Manifest::CatchUp() {
  if (!out_->IsRegular() || out_->Size() == known_) {
    return;
  }
  if (out_->Size() < known_) {
    // Somebody has begun the file anew.
    BeginAnew();
  }
  std::string text;
  if (!out_->Read(known_, &text)) {
    throw Failure(file_.string() + ": cannot be read");
  }
  const std::size_t whole = text.rfind('\n') + 1;  // 0 where there is none
  const bool isCut = whole < text.size() && IsBeginning(std::string_view(text).substr(whole));
  if (isCut) {
    text.resize(whole);
  }
  const std::vector<ManifestEntry> entries = ReadLines(file_, text, lines_);
  if (isCut && !out_->Truncate(known_ + whole)) {
    throw CannotBeWritten(file_);
  }
  for (const ManifestEntry& entry : entries) {
    Take(entry);
  }
  known_ += text.size();
}

void Manifest::Take(const ManifestEntry& entry) {
  Lines& lines = frames_[entry.frame];
  lines.outputHashes.insert(entry.outputHash);
  lines.last = entry;
  ++lines_;
}

void Manifest::Add(const ManifestEntry& entry) {
  const std::string line =
      ToJson(entry).dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  const Turn turn(this);
  CatchUp();
  if (!out_->Append(line) || !out_->Sync()) {
    throw CannotBeWritten(file_);
  }
  known_ += line.size();
  Take(entry);
}

std::optional<ManifestEntry> Manifest::Last(int frame) {
  const Turn turn(this);
  CatchUp();
  const auto found = frames_.find(frame);
  return found == frames_.end() ? std::nullopt : std::optional(found->second.last);
}

bool Manifest::Explains(int frame, const std::string& outputHash) {
  const Turn turn(this);
  CatchUp();
  const auto found = frames_.find(frame);
  return found != frames_.end() && found->second.outputHashes.contains(outputHash);
}

std::vector<ManifestEntry> ReadManifestLines(const std::filesystem::path& file) {
  RequireFile(file);
  std::ifstream in(file, std::ios::binary);
  return ReadLines(file, {std::istreambuf_iterator<char>(in), {}}, 0);
}

std::map<int, ManifestEntry> ReadManifest(const std::filesystem::path& file) {
  std::map<int, ManifestEntry> entries;
  for (ManifestEntry& entry : ReadManifestLines(file)) {
    entries[entry.frame] = std::move(entry);
  }
  return entries;
}

bool IsAsWritten(const ManifestEntry& entry) {
  return FileHash(Utf8Path(entry.output)) == entry.outputHash;
}

std::vector<int> FramesLacking(const std::map<int, ManifestEntry>& entries,
                               const std::vector<int>& frames) {
  std::vector<int> lacking;
  for (const int frame : frames) {
    if (!entries.contains(frame)) {
      lacking.push_back(frame);
    }
  }
  return lacking;
}

std::vector<std::string> CheckOutputs(const std::map<int, ManifestEntry>& entries) {
  std::vector<std::string> faults;
  for (const auto& [frame, entry] : entries) {
    try {
      if (!IsAsWritten(entry)) {
        faults.push_back("frame " + std::to_string(frame) + ": " + entry.output +
                         ": changed since it was written");
      }
    } catch (const Failure& fault) {
      faults.push_back("frame " + std::to_string(frame) + ": " + fault.what());
    }
  }
  return faults;
}

}  // namespace glimmerhost
