// SPDX-License-Identifier: BSD-3-Clause
// What a film file says of its pictures. It is read and written by ffmpeg's own programs, ffmpeg
// and ffprobe, where the machine has them.
//
//   film  --ffmpeg-->  PAM pictures  -->  this program  -->  PAM pictures  --ffmpeg-->  film
//
// Pictures are RGB of 16 bits on the way, as files of pictures are.
#pragma once

#include <filesystem>
#include <string>

#include "hostframe/interfaces/geometry.h"

namespace glimmerhost {

// How the numbers of a film become colours, in ffmpeg's words. Empty where the film does not say.
struct FilmColours {
  std::string range;      // "tv" or "pc"
  std::string matrix;     // "bt709", "bt2020nc"
  std::string primaries;  // "bt709", "bt2020"
  std::string transfer;   // "bt709", "smpte2084"

  bool operator==(const FilmColours&) const = default;
};

struct Film {
  std::filesystem::path file;
  int width = 0;
  int height = 0;
  int frames = 0;           // they count from 1
  std::string rate;         // frames a second: "24000/1001"
  bool rateVaries = false;  // then rate is the mean
  quantel::cSize2 pixelAspect{1, 1};
  bool hasAlpha = false;
  bool isRgb = false;        // not luma and differences of colours
  bool hasAllColour = true;  // a colour for each pixel, as 4:4:4
  bool isInterlaced = false;
  bool hasSound = false;
  FilmColours colours;
};

// By its ending: what cannot be a picture or a sequence of them.
bool IsFilm(const std::filesystem::path& file);

// For a person: "mov, mp4 or mkv".
extern const char* const kWritableFilms;

// Asks ffprobe. Throws MissingInput if the film or ffprobe is not there, Failure, which names the
// film, if it holds no pictures or cannot be read.
Film LookIntoFilm(const std::filesystem::path& file);

// The matrix that its numbers are made by: what it says, and else what players take for a picture
// of that height.
std::string MatrixOf(const Film& film);

}  // namespace glimmerhost
