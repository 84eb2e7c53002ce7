// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/file_conflicts.h"

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>

#include "host/shots/shot_plan.h"
#include "host/support/failure.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

bool IsFile(const fs::path& file) { return !file.empty() && file != kPipe; }

}  // namespace

// The file's own name in its folder, wherever that is.
std::string FileConflicts::Place(const fs::path& file) const {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
  auto found = folders_.find(folder.string());
  if (found == folders_.end()) {
    std::error_code error;
    const fs::path real = fs::weakly_canonical(folder, error);
    found = folders_.emplace(folder.string(), (error ? folder : real).string()).first;
  }
  return (Utf8Path(found->second) / file.filename()).string();
}

// What a link leads to, or the file itself.
std::string FileConflicts::Target(const fs::path& file) {
  std::error_code error;
  const fs::path real = fs::weakly_canonical(file, error);
  return (error ? file : real).string();
}

// Two frames are enough to tell that one of them is another than the one that writes it.
void FileConflicts::AddRead(const fs::path& file, int frame) {
  const std::string place = Place(file);
  std::vector<Use>& uses = read_[place];
  if (uses.empty()) {
    uses.push_back({frame, file});
  } else if (uses.size() == 1 && uses[0].frame != frame) {
    uses.push_back({frame, file});
    // A still: there are few of them.
    const std::string target = Target(file);
    if (target != place) {
      read_[target] = read_[place];
    }
  }
}

void FileConflicts::Add(const FrameFiles& files) {
  if (IsFile(files.output)) {
    written_.emplace(Place(files.output), Use{files.frame, files.output});
  }
  for (const fs::path& file : {files.input, files.spread, files.mask}) {
    if (IsFile(file)) {
      AddRead(file, files.frame);
    }
  }
  isInPlace_ = isInPlace_ || (IsFile(files.input) && IsFile(files.output) &&
                              Place(files.input) == Place(files.output));
}

void FileConflicts::CheckFrames() const {
  for (const auto& [place, uses] : read_) {
    const auto written = written_.find(place);
    if (written == written_.end()) {
      continue;
    }
    const auto other = std::find_if(uses.begin(), uses.end(), [&](const Use& use) {
      return use.frame != written->second.frame;
    });
    if (other != uses.end()) {
      throw UsageError("-o " + written->second.file.string() +
                       ": no frame may write what another reads; this one is of frame " +
                       std::to_string(written->second.frame) + ", and frame " +
                       std::to_string(other->frame) + " reads it");
    }
  }
}

void FileConflicts::CheckBeside(const std::vector<NamedFile>& beside) const {
  const auto refuse = [](const NamedFile& file, const std::string& what) {
    throw UsageError(file.option + " " + file.name + " must be a file of its own; this one is " +
                     what);
  };
  for (std::size_t i = 0; i < beside.size(); ++i) {
    const NamedFile& file = beside[i];
    if (!file.isWritten || file.name.empty()) {
      continue;
    }
    const std::string place = Place(Utf8Path(file.name));
    const std::string target = Target(Utf8Path(file.name));
    for (const std::string& one : {place, target}) {
      if (const auto written = written_.find(one); written != written_.end()) {
        refuse(file, "the output of frame " + std::to_string(written->second.frame));
      }
      if (const auto read = read_.find(one); read != read_.end()) {
        refuse(file, "a picture that frame " + std::to_string(read->second[0].frame) + " reads");
      }
    }
    for (std::size_t k = 0; k < beside.size(); ++k) {
      const NamedFile& other = beside[k];
      const bool isUpdate = file.option == "--save-params" && other.option == "--params";
      if (k != i && !isUpdate && !other.name.empty() && Target(Utf8Path(other.name)) == target) {
        refuse(file, other.option + "'s");
      }
    }
  }
}

}  // namespace glimmerhost
