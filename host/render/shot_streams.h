// SPDX-License-Identifier: BSD-3-Clause
// ShotStreams: where pictures come from, and go to, that are in no files of their own.
#pragma once

#include <cstdio>
#include <string>

namespace glimmerhost {

// Of frames whose input or output is kPipe. In binary mode, borrowed; the names are for errors.
struct ShotStreams {
  std::FILE* in = stdin;
  std::string inName = "standard input";
  std::FILE* out = stdout;
  std::string outName = "standard output";
};

}  // namespace glimmerhost
