// SPDX-License-Identifier: BSD-3-Clause
#include "host/films/film_writer.h"

#include <string>
#include <system_error>
#include <vector>

#include "host/films/film_words.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

// How the pictures are coded.
struct Coding {
  Words words;
  std::string pixels;
  bool isRgb = false;
};

Coding CodingOf(const fs::path& file, const Film& film) {
  const std::string ending = file.extension().string();
  if (ending == ".mov") {
    const bool full = film.hasAlpha || film.hasAllColour;
    Words words = {"-c:v", "prores_ks", "-profile:v", full ? "4444" : "hq", "-vendor", "apl0"};
    if (film.hasAlpha) {
      words.insert(words.end(), {"-alpha_bits", "16"});
    }
    return {words, film.hasAlpha ? "yuva444p10le" : full ? "yuv444p10le" : "yuv422p10le"};
  }
  if (ending == ".mp4") {
    return {{"-c:v", "libx264", "-preset", "medium", "-crf", "16", "-movflags", "+faststart"},
            "yuv420p"};
  }
  if (ending == ".mkv") {
    return {{"-c:v", "ffv1", "-level", "3", "-g", "1", "-slicecrc", "1"},
            film.hasAlpha ? "gbrap16le" : "gbrp16le",
            true};
  }
  throw MustBe("-o", std::string("a film that ends in ") + kWritableFilms, file.string());
}

// What the numbers mean goes into the frames, from which coders take it, and into the file.
Words Colours(const Film& film, const Coding& coding) {
  const std::string range =
      coding.isRgb ? "pc" : (film.colours.range.empty() ? "tv" : film.colours.range);
  const std::string matrix = film.isRgb ? "bt709" : MatrixOf(film);
  std::string filters = std::string("scale=") + kExactScaling;
  std::string meaning = "setparams=range=" + range;
  Words words;
  if (!coding.isRgb) {
    filters += ":out_color_matrix=" + ScalerMatrix(matrix) + ":out_range=" + range;
    words = {"-color_range", range};
  }
  const auto tell = [&](const char* option, const char* parameter, const std::string& value) {
    if (!value.empty()) {
      meaning += std::string(":") + parameter + "=" + value;
      words.insert(words.end(), {option, value});
    }
  };
  if (coding.isRgb) {
    // The coder has another word for it than the filter.
    meaning += ":colorspace=gbr";
    words.insert(words.end(), {"-colorspace", "rgb"});
  } else {
    // A film that says nothing of its matrix gives another that says nothing.
    tell("-colorspace", "colorspace", film.isRgb ? matrix : film.colours.matrix);
  }
  tell("-color_primaries", "color_primaries", film.colours.primaries);
  tell("-color_trc", "color_trc", film.colours.transfer);
  words.insert(words.end(), {"-vf", filters + ",format=" + coding.pixels + "," + meaning +
                                        ",setsar=" + std::to_string(film.pixelAspect.first) + "/" +
                                        std::to_string(film.pixelAspect.second)});
  return words;
}

// The place where it is made is new, and nobody else's.
fs::path MadeIn(const TemporaryFile& part, const fs::path& file, bool replace) {
  std::error_code error;
  if (!replace && fs::exists(file, error)) {
    throw Failure(file.string() + ": exists already; --overwrite replaces it");
  }
  try {
    part.Write("");
  } catch (const Failure& fault) {
    throw Failure(file.string() + ": cannot be written: " + fault.what());
  }
  return part.Path();
}

Words Arguments(const fs::path& file, const fs::path& made, const Film& like, bool isWhole) {
  const Coding coding = CodingOf(file, like);
  Words words = {
      "-v",      "error", "-y",     "-f", "image2pipe",        "-c:v", "pam",  "-framerate",
      like.rate, "-i",    "pipe:0", "-i", FilmFile(like.file), "-map", "0:v:0"};
  const auto add = [&](const Words& more) { words.insert(words.end(), more.begin(), more.end()); };
  if (isWhole && like.hasSound) {
    // MP4 has no place for most kinds of sound.
    add({"-map", "1:a", "-c:a", file.extension() == ".mp4" ? "aac" : "copy"});
  }
  add({"-map_metadata", "1", "-map_metadata:s:v:0", "1:s:v:0"});
  add(coding.words);
  add(Colours(like, coding));
  words.push_back(FilmFile(made));
  return words;
}

}  // namespace

FilmWriter::FilmWriter(const fs::path& file, const Film& like, bool isWhole, bool replace)
    : file_(file),
      replace_(replace),
      part_(file),
      child_(StartFilmProgram("ffmpeg",
                              Arguments(file, MadeIn(part_, file, replace), like, isWhole),
                              ChildProcess::Use::kInput, file)) {}

void FilmWriter::Finish() {
  const bool taken = child_.CloseStream();
  const ProcessEnd end = child_.Wait();
  const std::string trouble = TroubleOf(&child_);
  if (!taken || end.code != 0 || end.signal != 0 || !trouble.empty()) {
    throw Failure(file_.string() + ": cannot be written: ffmpeg " +
                  (trouble.empty() ? ShowEnd(end) : "says: " + trouble));
  }
  try {
    part_.MoveIn(replace_);
  } catch (const Failure& fault) {
    throw Failure(file_.string() + ": cannot be written: " + fault.what());
  }
}

}  // namespace glimmerhost
