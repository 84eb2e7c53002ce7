// Files written by OpenImageIO, without its habit of overlooking a full disk.
#pragma once

#include <OpenImageIO/imageio.h>

#include <memory>

#include "host/pictures/picture_formats.h"

namespace glimmerhost {

// Makes a file of one picture, all of which the system has taken.
//   samples  as the spec's channels, of the given type
//   output   not opened yet
// Throws Failure with the bare reason.
void WriteWhole(const OutputFile& file, const OIIO::ImageSpec& spec, OIIO::TypeDesc type,
                const void* samples, std::unique_ptr<OIIO::ImageOutput> output);

}  // namespace glimmerhost
