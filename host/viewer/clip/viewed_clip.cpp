// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/clip/viewed_clip.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>

#include "host/films/film.h"
#include "host/support/failure.h"
#include "host/support/input_file.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

std::vector<int> FramesOf(const FileSequence& files) {
  const fs::path file = files.File(1);
  if (IsFilm(file)) {
    throw Failure(file.string() +
                  ": a film, which the window does not open; glimmerhost render takes films as "
                  "they are, and ffmpeg makes pictures of them that the window opens: ffmpeg -i " +
                  file.filename().string() + " " + file.stem().string() + ".%04d.png");
  }
  if (!files.HasFrames()) {
    RequireFile(file);
    return {1};
  }
  if (files.Frames().empty()) {
    return files.Scan();
  }
  std::vector<int> frames = files.Frames();
  std::sort(frames.begin(), frames.end());
  return frames;
}

// How many frames a name has; 0 for one that is no sequence's.
std::size_t CountFrames(const std::string& name) {
  try {
    const FileSequence files("", name);
    return files.HasFrames() ? files.Scan().size() : 0;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    return 0;
  }
}

}  // namespace

ViewedClip::ViewedClip(const std::string& name)
    : files_("INPUT", name), frames_(FramesOf(files_)) {}

std::string ViewedClip::Title() const { return Utf8Path(Input()).filename().string(); }

std::string SequenceOf(const fs::path& file) {
  constexpr const char* kDigits = "0123456789";
  const std::string stem = file.stem().string();
  const std::size_t last = stem.find_last_of(kDigits);
  if (last == std::string::npos || IsFilm(file)) {
    return {};
  }
  const std::size_t before = stem.find_last_not_of(kDigits, last);
  const std::size_t first = before == std::string::npos ? 0 : before + 1;
  const auto named = [&](const std::string& place) {
    const std::string name =
        stem.substr(0, first) + place + stem.substr(last + 1) + file.extension().string();
    return (file.parent_path() / Utf8Path(name)).string();
  };
  // Numbers of one width, or as they come: shot.9.png is before shot.10.png.
  const std::size_t width = last + 1 - first;
  const std::string padded = named(width == 1 ? "@" : std::string(width, '#'));
  const std::string bare = named("@");
  const std::size_t paddedCount = CountFrames(padded);
  const std::size_t bareCount = stem[first] == '0' ? 0 : CountFrames(bare);
  if (std::max(paddedCount, bareCount) < 2) {
    return {};
  }
  return bareCount > paddedCount ? bare : padded;
}

}  // namespace glimmerhost
