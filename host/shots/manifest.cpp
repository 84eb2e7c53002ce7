// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/manifest.h"

#include <cstddef>
#include <exception>
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

Json ToJson(const ManifestEntry& entry) {
  return {{"frame", entry.frame},
          {"input", entry.input},
          {"input_hash", entry.inputHash},
          {"output", entry.output},
          {"output_hash", entry.outputHash},
          {"parameters", entry.parameters},
          {"engine", entry.engine},
          {"versions", entry.versions},
          {"seconds", entry.seconds},
          {"clipped_samples", entry.clippedSamples},
          {"not_numbers", entry.notNumbers}};
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
  json.at("versions").get_to(entry.versions);
  json.at("seconds").get_to(entry.seconds);
  json.at("clipped_samples").get_to(entry.clippedSamples);
  json.at("not_numbers").get_to(entry.notNumbers);
  return entry;
}

// Whether that may be the beginning of a line, and not what another kind of file ends in.
bool IsBeginning(std::string_view text) {
  constexpr std::string_view kFirst = "{\"frame\":";
  return text.starts_with(kFirst) || kFirst.starts_with(text);
}

std::map<int, ManifestEntry> ReadLines(const std::filesystem::path& file, std::istream* in) {
  std::map<int, ManifestEntry> entries;
  int number = 0;
  for (std::string line; std::getline(*in, line);) {
    ++number;
    try {
      ManifestEntry entry = FromJson(Json::parse(line));
      entries[entry.frame] = std::move(entry);
    } catch (const Json::exception&) {
      throw Failure(file.string() + ":" + std::to_string(number) + ": not a line of a manifest");
    }
  }
  return entries;
}

}  // namespace

Manifest::Manifest(std::filesystem::path file, bool goOn, bool replace) : file_(std::move(file)) {
  std::error_code error;
  if (!goOn && !replace && std::filesystem::exists(file_, error)) {
    throw Failure(file_.string() +
                  ": exists already; --skip-existing goes on with it, --overwrite replaces it");
  }
  if (goOn && std::filesystem::exists(file_, error)) {
    GoOn();
  }
  out_.open(file_, std::ios::binary | (goOn ? std::ios::app : std::ios::trunc));
  if (!out_) {
    throw Failure(file_.string() + ": cannot be written");
  }
}

void Manifest::GoOn() {
  std::ifstream in(file_, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  in.close();
  const std::size_t whole = text.rfind('\n') + 1;  // 0 where there is none
  const bool isCut = whole < text.size() && IsBeginning(std::string_view(text).substr(whole));
  std::istringstream lines(isCut ? text.substr(0, whole) : text);
  for (const auto& [frame, entry] : ReadLines(file_, &lines)) {
    frames_.insert(frame);
  }
  std::error_code error;
  if (isCut) {
    std::filesystem::resize_file(file_, whole, error);
  }
  if (error) {
    throw Failure(file_.string() + ": cannot be written: " + error.message());
  }
}

// A line at once, for readers that follow the file.
void Manifest::Add(const ManifestEntry& entry) {
  out_ << ToJson(entry).dump(-1, ' ', false, Json::error_handler_t::replace) + "\n" << std::flush;
  if (!out_) {
    throw Failure(file_.string() + ": cannot be written");
  }
  frames_.insert(entry.frame);
}

std::map<int, ManifestEntry> ReadManifest(const std::filesystem::path& file) {
  RequireFile(file);
  std::ifstream in(file, std::ios::binary);
  return ReadLines(file, &in);
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
