// SPDX-License-Identifier: BSD-3-Clause
#include "host/farm/chunk_manifests.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include "host/shots/manifest.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// "0003-of-0012".
bool IsPlace(std::string_view text) {
  constexpr std::string_view kOf = "-of-";
  const std::size_t of = text.find(kOf);
  const auto isNumber = [](std::string_view part) {
    return !part.empty() && part.find_first_not_of("0123456789") == std::string_view::npos;
  };
  return of != std::string_view::npos && isNumber(text.substr(0, of)) &&
         isNumber(text.substr(of + kOf.size()));
}

struct DatedFile {
  fs::file_time_type time;
  fs::path file;
};

struct DatedLine {
  fs::file_time_type time;  // of its manifest
  ManifestEntry entry;
};

// Those of other cuts, the latest last: its lines are the ones that count.
std::vector<DatedFile> OtherManifests(const FarmJob& job) {
  const fs::path beginning = Utf8Path(job.manifestBefore);
  const std::string before = beginning.filename().string();
  const std::string cut = job.Place(1).substr(job.Place(1).find('-'));
  const fs::path folder = beginning.has_parent_path() ? beginning.parent_path() : fs::path(".");
  std::vector<DatedFile> found;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.size() <= before.size() + job.manifestBehind.size() || !name.starts_with(before) ||
        !name.ends_with(job.manifestBehind)) {
      continue;
    }
    const std::string_view place = std::string_view(name).substr(
        before.size(), name.size() - before.size() - job.manifestBehind.size());
    std::error_code unknown;
    if (IsPlace(place) && !place.ends_with(cut)) {
      found.push_back({entry->last_write_time(unknown), entry->path()});
    }
  }
  std::sort(found.begin(), found.end(), [](const DatedFile& a, const DatedFile& b) {
    return std::tie(a.time, a.file) < std::tie(b.time, b.file);
  });
  return found;
}

}  // namespace

void CarryManifests(const FarmJob& job) {
  std::map<int, std::vector<DatedLine>> lines;
  for (const auto& [time, file] : OtherManifests(job)) {
    for (ManifestEntry& entry : ReadManifestLines(file)) {
      std::vector<DatedLine>& of = lines[entry.frame];
      of.push_back({time, std::move(entry)});
    }
  }
  for (std::size_t chunk = 1; chunk <= job.chunks && !lines.empty(); ++chunk) {
    std::error_code none;  // for a manifest that is not there: all others are later
    const fs::file_time_type own = fs::last_write_time(job.Manifest(chunk), none);
    std::unique_ptr<Manifest> manifest;
    for (const int frame : job.Frames(chunk)) {
      for (const DatedLine& line : lines[frame]) {
        if (!none && line.time < own) {
          continue;
        }
        if (!manifest) {
          manifest = std::make_unique<Manifest>(job.Manifest(chunk), true, false);
        }
        if (!manifest->Explains(frame, line.entry.outputHash)) {
          manifest->Add(line.entry);
        }
      }
    }
  }
}

}  // namespace glimmerhost
