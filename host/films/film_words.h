// SPDX-License-Identifier: BSD-3-Clause
// How this program speaks with ffmpeg's programs.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/support/child_process.h"

namespace glimmerhost {

// The name of a file as these programs take none for an address or an option.
std::string FilmFile(const std::filesystem::path& file);

// Starts one of them. Throws MissingInput, which says what must be installed, where it is not
// there.
//   name  ffmpeg or ffprobe
//   film  what it is for, for the error
ChildProcess StartFilmProgram(const std::string& name, const std::vector<std::string>& arguments,
                              ChildProcess::Use use, const std::filesystem::path& film);

// All that it has said of what went wrong, in one line; empty if nothing.
std::string TroubleOf(ChildProcess* child);

// What the scaler is to do: no quick ways, and a colour for each pixel before others are made of
// it.
inline constexpr const char* kExactScaling =
    "flags=bicubic+accurate_rnd+full_chroma_int+full_chroma_inp";

// The scaler's name of a matrix.
std::string ScalerMatrix(const std::string& matrix);

}  // namespace glimmerhost
