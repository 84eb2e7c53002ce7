// SPDX-License-Identifier: BSD-3-Clause
// Files written by OpenImageIO, without its habit of overlooking a full disk.
#pragma once

#include <OpenImageIO/imageio.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/pictures/file_bytes.h"

namespace glimmerhost {

struct OutputPart {
  OIIO::ImageSpec spec;
  OIIO::TypeDesc type;  // of the samples; UNKNOWN for each channel's own
  const void* samples;  // in the order of the part's channels
};

// Makes a file, all of which the system has taken.
//   name    what it is to be called, for formats that hold their own name
//   bytes   the file, just made
//   parts   one, or several of a format that has parts
//   output  not opened yet
// Throws Failure with the bare reason.
void WriteWhole(const std::string& name, FileBytes* bytes, const std::vector<OutputPart>& parts,
                std::unique_ptr<OIIO::ImageOutput> output);

// The same of one picture.
inline void WriteWhole(const std::string& name, FileBytes* bytes, const OIIO::ImageSpec& spec,
                       OIIO::TypeDesc type, const void* samples,
                       std::unique_ptr<OIIO::ImageOutput> output) {
  WriteWhole(name, bytes, {{spec, type, samples}}, std::move(output));
}

}  // namespace glimmerhost
