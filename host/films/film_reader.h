// SPDX-License-Identifier: BSD-3-Clause
// FilmReader: the pictures of a film, one after another.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "host/films/film.h"
#include "host/support/child_process.h"

namespace glimmerhost {

class FilmReader {
 public:
  //   frames  those that are wanted, in ascending order, from 1 to those that it has
  // Throws MissingInput where ffmpeg is not there.
  FilmReader(const Film& film, const std::vector<int>& frames);

  // PAM pictures of 16 bits, with alpha where the film has it, borrowed.
  std::FILE* Stream() const { return child_.Stream(); }

  // Once, when no more is wanted. Throws Failure, which names the film, if what was read is not all
  // that was wanted, or anything of it was damaged.
  //   isWhole  whether all of the stream was read
  void Finish(bool isWhole);

 private:
  std::filesystem::path file_;
  ChildProcess child_;
};

}  // namespace glimmerhost
