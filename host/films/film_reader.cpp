// SPDX-License-Identifier: BSD-3-Clause
#include "host/films/film_reader.h"

#include "host/films/film_words.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

// Ranges of frames as they count here, in the filter's own numbers from 0.
std::string Selected(const std::vector<int>& frames) {
  std::string terms;
  for (std::size_t i = 0; i < frames.size();) {
    std::size_t end = i + 1;
    while (end < frames.size() && frames[end] == frames[end - 1] + 1) {
      ++end;
    }
    terms += (terms.empty() ? "" : "+") + std::string("between(n,") +
             std::to_string(frames[i] - 1) + "," + std::to_string(frames[end - 1] - 1) + ")";
    i = end;
  }
  return "select='" + terms + "'";
}

std::vector<std::string> Arguments(const Film& film, const std::vector<int>& frames) {
  std::string filters;
  if (frames.size() < static_cast<std::size_t>(film.frames)) {
    filters = Selected(frames) + ",";
  }
  filters += std::string("scale=") + kExactScaling;
  if (!film.isRgb) {
    filters += ":in_color_matrix=" + ScalerMatrix(MatrixOf(film)) +
               ":in_range=" + (film.colours.range.empty() ? "tv" : film.colours.range);
  }
  filters += std::string(",format=") + (film.hasAlpha ? "rgba64be" : "rgb48be");
  // A damaged picture ends it: shown as far as it goes, it would pass for whole.
  return {"-v",
          "error",
          "-nostdin",
          "-xerror",
          "-err_detect",
          "explode",
          "-i",
          FilmFile(film.file),
          "-map",
          "0:v:0",
          "-fps_mode",
          "passthrough",
          "-vf",
          filters,
          "-frames:v",
          std::to_string(frames.size()),
          "-f",
          "image2pipe",
          "-c:v",
          "pam",
          "-"};
}

}  // namespace

FilmReader::FilmReader(const Film& film, const std::vector<int>& frames)
    : file_(film.file),
      child_(StartFilmProgram("ffmpeg", Arguments(film, frames), ChildProcess::Use::kOutput,
                              film.file)) {}

void FilmReader::Finish(bool isWhole) {
  child_.CloseStream();
  const ProcessEnd end = child_.Wait();
  const std::string trouble = TroubleOf(&child_);
  // One that is ended early says that nobody reads it any more.
  if (isWhole && (end.code != 0 || end.signal != 0 || !trouble.empty())) {
    throw Failure(file_.string() + ": cut short or broken: ffmpeg " +
                  (trouble.empty() ? ShowEnd(end) : "says: " + trouble));
  }
}

}  // namespace glimmerhost
