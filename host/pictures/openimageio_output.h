// Files written by OpenImageIO, without its habit of overlooking a full disk.
#pragma once

#include <OpenImageIO/imageio.h>

#include <filesystem>
#include <memory>

namespace glimmerhost {

// Makes a file of one picture, all of which the system has taken.
//   samples  as the spec's channels, of the given type
//   output   not opened yet
// Throws Failure with the bare reason.
void WriteWhole(const std::filesystem::path& file, const OIIO::ImageSpec& spec, OIIO::TypeDesc type,
                const void* samples, std::unique_ptr<OIIO::ImageOutput> output);

}  // namespace glimmerhost
