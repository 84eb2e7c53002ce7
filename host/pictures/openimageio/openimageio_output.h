// SPDX-License-Identifier: BSD-3-Clause
// Files written by OpenImageIO, without its habit of overlooking a full disk.
#pragma once

#include <OpenImageIO/imageio.h>

#include <memory>
#include <string>

#include "host/pictures/file_bytes.h"

namespace glimmerhost {

// Makes a file of one picture, all of which the system has taken.
//   name     what it is to be called, for formats that hold their own name
//   bytes    the file, just made
//   samples  in the order of the output's channels, of the given type
//   output   not opened yet
// Throws Failure with the bare reason.
void WriteWhole(const std::string& name, FileBytes* bytes, const OIIO::ImageSpec& spec,
                OIIO::TypeDesc type, const void* samples,
                std::unique_ptr<OIIO::ImageOutput> output);

}  // namespace glimmerhost
