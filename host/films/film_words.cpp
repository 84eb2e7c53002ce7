// SPDX-License-Identifier: BSD-3-Clause
#include "host/films/film_words.h"

#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {

std::string FilmFile(const std::filesystem::path& file) { return "file:" + file.string(); }

ChildProcess StartFilmProgram(const std::string& name, const std::vector<std::string>& arguments,
                              ChildProcess::Use use, const std::filesystem::path& film) {
  try {
    return ChildProcess(name, arguments, use);
  } catch (const MissingInput&) {
    throw MissingInput(film.string() + ": films need the program " + name +
                       ", which is not on this machine (Debian's package ffmpeg has it)");
  }
}

std::string TroubleOf(ChildProcess* child) {
  std::string trouble;
  constexpr int kMostLines = 3;
  int count = 0;
  for (std::string line; child->ReadLine(&line);) {
    if (!line.empty() && count++ < kMostLines) {
      trouble += (trouble.empty() ? "" : "; ") + OneLine(line);
    }
  }
  return trouble;
}

std::string ScalerMatrix(const std::string& matrix) {
  if (matrix == "bt2020nc" || matrix == "bt2020c") {
    return "bt2020";
  }
  return matrix == "bt470bg" ? "bt470" : matrix;
}

}  // namespace glimmerhost
