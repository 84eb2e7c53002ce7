// SPDX-License-Identifier: BSD-3-Clause
#include "host/films/film.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <nlohmann/json.hpp>
#include <string_view>

#include "host/films/film_words.h"
#include "host/support/failure.h"
#include "host/support/input_file.h"

namespace glimmerhost {
namespace {

using Json = nlohmann::json;

constexpr std::array<std::string_view, 10> kEndings = {".mov", ".mp4",  ".m4v", ".mkv",  ".mxf",
                                                       ".avi", ".webm", ".mpg", ".mpeg", ".ts"};

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& why) {
  throw Failure(file.string() + ": " + why);
}

// Empty for what ffprobe does not know either.
std::string Word(const Json& stream, const char* name) {
  const std::string word = stream.value(name, "");
  return word == "unknown" || word == "reserved" || word == "unspecified" ? "" : word;
}

struct Ratio {
  int above = 0;
  int below = 0;
};

// "24000/1001" or "1:1"; zeros for what is none.
Ratio ParseRatio(const std::string& text) {
  Ratio ratio;
  const std::size_t sign = text.find_first_of("/:");
  if (sign == std::string::npos) {
    return {};
  }
  const char* const end = text.data() + text.size();
  const bool good =
      std::from_chars(text.data(), text.data() + sign, ratio.above).ptr == text.data() + sign &&
      std::from_chars(text.data() + sign + 1, end, ratio.below).ptr == end;
  return good && ratio.above > 0 && ratio.below > 0 ? ratio : Ratio{};
}

int ParseCount(const Json& stream, const char* name) {
  const std::string text = stream.value(name, "");
  int count = 0;
  std::from_chars(text.data(), text.data() + text.size(), count);
  return count;
}

Json Ask(const std::filesystem::path& file, const std::vector<std::string>& what) {
  std::vector<std::string> arguments = {"-v", "error"};
  arguments.insert(arguments.end(), what.begin(), what.end());
  arguments.insert(arguments.end(), {"-of", "json", "-i", FilmFile(file)});
  ChildProcess child = StartFilmProgram("ffprobe", arguments, ChildProcess::Use::kOutput, file);
  std::string text;
  std::array<char, 4096> buffer{};
  for (std::size_t got = 0;
       (got = std::fread(buffer.data(), 1, buffer.size(), child.Stream())) > 0;) {
    text.append(buffer.data(), got);
  }
  child.CloseStream();
  const ProcessEnd end = child.Wait();
  const std::string trouble = TroubleOf(&child);
  Json answer = Json::parse(text, nullptr, false);
  // It counts what it can, and says of a film that is cut short how many frames are left.
  if (end.code != 0 || end.signal != 0 || !trouble.empty() || !answer.is_object()) {
    Fail(file,
         "not a whole film that ffprobe can read: " + (trouble.empty() ? ShowEnd(end) : trouble));
  }
  return answer;
}

// Where the film's head does not say it, all of it is gone through; nothing is decoded.
int CountFrames(const std::filesystem::path& file, const Json& stream) {
  if (const int told = ParseCount(stream, "nb_frames"); told > 0) {
    return told;
  }
  const Json counted = Ask(file, {"-select_streams", "v:0", "-count_packets", "-show_entries",
                                  "stream=nb_read_packets"});
  const Json streams = counted.value("streams", Json::array());
  return streams.empty() ? 0 : ParseCount(streams[0], "nb_read_packets");
}

void TakePixels(const std::string& format, Film* film) {
  const auto has = [&](std::string_view part) { return format.find(part) != std::string::npos; };
  film->isRgb = has("rgb") || has("bgr") || has("gbr") || has("0r") || has("pal8");
  film->hasAlpha = format.starts_with("yuva") || has("rgba") || has("argb") || has("bgra") ||
                   has("abgr") || has("gbrap") || has("ya8") || has("ya16") || has("ayuv");
  film->hasAllColour = film->isRgb || has("444") || has("gray") || has("xv36");
}

}  // namespace

const char* const kWritableFilms = ".mov, .mp4 or .mkv";

bool IsFilm(const std::filesystem::path& file) {
  std::string ending = file.extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return std::find(kEndings.begin(), kEndings.end(), ending) != kEndings.end();
}

Film LookIntoFilm(const std::filesystem::path& file) {
  RequireFile(file);
  const Json answer = Ask(file, {"-show_streams"});
  Film film;
  film.file = file;
  const Json* pictures = nullptr;
  const Json streams = answer.value("streams", Json::array());
  for (const Json& stream : streams) {
    const std::string type = stream.value("codec_type", "");
    film.hasSound = film.hasSound || type == "audio";
    if (type == "video" && pictures == nullptr) {
      pictures = &stream;
    }
  }
  if (pictures == nullptr) {
    Fail(file, "it holds no pictures");
  }
  film.width = pictures->value("width", 0);
  film.height = pictures->value("height", 0);
  film.frames = CountFrames(file, *pictures);
  const std::string mean = pictures->value("avg_frame_rate", "");
  const std::string base = pictures->value("r_frame_rate", "");
  film.rate = ParseRatio(mean).above > 0 ? mean : base;
  film.rateVaries = ParseRatio(mean).above > 0 && ParseRatio(base).above > 0 && mean != base;
  if (film.width < 1 || film.height < 1 || film.frames < 1 || ParseRatio(film.rate).above == 0) {
    Fail(file, "its size, rate or number of frames is not known");
  }
  if (const Ratio aspect = ParseRatio(Word(*pictures, "sample_aspect_ratio")); aspect.above > 0) {
    film.pixelAspect = {aspect.above, aspect.below};
  }
  TakePixels(pictures->value("pix_fmt", ""), &film);
  const std::string order = Word(*pictures, "field_order");
  film.isInterlaced = !order.empty() && order != "progressive";
  film.colours = {Word(*pictures, "color_range"), Word(*pictures, "color_space"),
                  Word(*pictures, "color_primaries"), Word(*pictures, "color_transfer")};
  return film;
}

// Standard definition has up to 576 lines.
std::string MatrixOf(const Film& film) {
  if (!film.colours.matrix.empty() && film.colours.matrix != "gbr") {
    return film.colours.matrix;
  }
  constexpr int kStandardLines = 576;
  return film.height > kStandardLines ? "bt709" : "smpte170m";
}

}  // namespace glimmerhost
