// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/file_sequence.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/looks/shot_span.h"
#include "host/shots/frame_list.h"
#include "host/support/failure.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

constexpr int kMostDigits = 12;

struct Place {
  std::size_t begin;
  std::size_t end;
  int width;
};

// %d or %0Nd at that position.
std::optional<Place> PercentPlace(std::string_view text, std::size_t begin) {
  std::size_t end = begin + 1;
  int width = 0;
  if (end < text.size() && text[end] == '0') {
    const auto [stop, error] = std::from_chars(text.data() + end, text.data() + text.size(), width);
    end = static_cast<std::size_t>(stop - text.data());
    if (error != std::errc() || width < 1 || width > kMostDigits) {
      return std::nullopt;
    }
  }
  if (end >= text.size() || text[end] != 'd') {
    return std::nullopt;
  }
  return Place{begin, end + 1, width};
}

std::optional<Place> FindPlace(std::string_view text, std::size_t from) {
  for (std::size_t i = from; i < text.size(); ++i) {
    if (text[i] == '%') {
      if (const auto place = PercentPlace(text, i)) {
        return place;
      }
    }
    if (text[i] == '#' || text[i] == '@') {
      const std::size_t end = std::min(text.find_first_not_of(text[i], i), text.size());
      const auto count = static_cast<int>(end - i);
      return Place{i, end, text[i] == '#' && count == 1 ? 4 : count};
    }
  }
  return std::nullopt;
}

std::string Padded(int frame, int width) {
  char text[32];
  std::snprintf(text, sizeof text, "%0*d", std::min(width, kMostDigits), frame);
  return text;
}

}  // namespace

FileSequence::FileSequence(const std::string& option, const std::string& name) : name_(name) {
  const fs::path path = Utf8Path(name);
  folder_ = path.parent_path();
  before_ = path.filename().string();
  std::error_code error;
  if (fs::is_regular_file(path, error)) {
    return;
  }
  if (FindPlace(folder_.string(), 0)) {
    throw UsageError(option + " " + name +
                     ": the frame's number must be in the file's name, not in a folder's");
  }
  const std::optional<Place> place = FindPlace(before_, 0);
  if (!place) {
    return;
  }
  if (FindPlace(before_, place->end) || place->width > kMostDigits) {
    throw UsageError(option + " " + name +
                     ": must have one place for the frame's number, of at most 12 digits");
  }
  width_ = place->width;
  after_ = before_.substr(place->end);
  before_ = before_.substr(0, place->begin);
  TakeFrames(option);
}

// A list of more than one frame: a number alone would more often be a part of the name.
void FileSequence::TakeFrames(const std::string& option) {
  const std::size_t start = before_.find_last_not_of("0123456789-,x") + 1;
  const std::string list = before_.substr(start);
  const bool apart = start == 0 || before_[start - 1] == '.' || before_[start - 1] == '_';
  if (!apart || list.find_first_of("-,", 1) == std::string::npos ||
      list.find_first_of("0123456789") == std::string::npos) {
    return;
  }
  frames_ = ParseFrames(option, list);
  before_.resize(start);
}

fs::path FileSequence::File(int frame) const {
  return folder_ / Utf8Path(HasFrames() ? before_ + Padded(frame, width_) + after_ : before_);
}

fs::path FileSequence::Stem() const {
  std::string stem = HasFrames() ? before_ : Utf8Path(before_).stem().string();
  stem.erase(stem.find_last_not_of("._- ") + 1);
  return folder_ / Utf8Path(stem.empty() ? "frames" : stem);
}

std::vector<int> FileSequence::Scan() const {
  const fs::path folder = folder_.empty() ? fs::path(".") : folder_;
  std::error_code error;
  std::vector<int> frames;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.size() <= before_.size() + after_.size() || !name.starts_with(before_) ||
        !name.ends_with(after_)) {
      continue;
    }
    const char* first = name.data() + before_.size();
    const char* last = name.data() + name.size() - after_.size();
    int frame = 0;
    const auto [stop, fault] = std::from_chars(first, last, frame);
    if (stop != last) {
      continue;
    }
    if (fault != std::errc() || frame < -kLargestFrame || frame > kLargestFrame) {
      throw Failure(entry->path().string() + ": its frame number must be from " +
                    std::to_string(-kLargestFrame) + " to " + std::to_string(kLargestFrame));
    }
    // Other widths are other sequences.
    if (Padded(frame, width_) == std::string(first, last)) {
      frames.push_back(frame);
    }
  }
  if (error == std::errc::no_such_file_or_directory) {
    throw MissingInput(folder.string() + ": not found");
  }
  if (error) {
    throw Failure(folder.string() + ": the folder cannot be read: " + error.message());
  }
  if (frames.empty()) {
    throw MissingInput(name_ + ": no such files");
  }
  std::sort(frames.begin(), frames.end());
  return frames;
}

}  // namespace glimmerhost
