// SPDX-License-Identifier: BSD-3-Clause
// FilmWriter: a film out of pictures, one after another. It appears whole or not at all.
#pragma once

#include <cstdio>
#include <filesystem>

#include "host/films/film.h"
#include "host/support/child_process.h"
#include "host/support/temporary_file.h"

namespace glimmerhost {

class FilmWriter {
 public:
  // Begins a film at the same rate, with the colours, and as far as its kind of file has a place
  // for them alpha, timecode and what else the old one says.
  //
  //   ending  pictures
  //   .mov    ProRes of 10 bits: 422 HQ, or 4444 for films with alpha or a colour for each pixel
  //   .mp4    H.264 of 8 bits
  //   .mkv    FFV1, which loses nothing of RGB with 16 bits
  //
  //   like     the film that the pictures come from
  //   isWhole  whether they are all of its frames: then its sound goes along
  //   replace  whether a file of that name may be there
  // Throws UsageError for an ending that is none of these, MissingInput where ffmpeg is not there,
  // and Failure.
  FilmWriter(const std::filesystem::path& file, const Film& like, bool isWhole, bool replace);

  // Takes PAM pictures with alpha, borrowed.
  std::FILE* Stream() const { return child_.Stream(); }

  // Once, behind the last picture: finishes the film and moves it in. Throws Failure, which names
  // it; nothing is left of it then. Nor is anything where this is not called.
  void Finish();

 private:
  std::filesystem::path file_;
  bool replace_;
  TemporaryFile part_;
  ChildProcess child_;
};

}  // namespace glimmerhost
