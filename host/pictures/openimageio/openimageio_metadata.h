// SPDX-License-Identifier: BSD-3-Clause
// What a file that OpenImageIO reads says beside its samples, and how it goes on to another one.
#pragma once

#include <OpenImageIO/imageio.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/not_carried.h"
#include "host/pictures/picture.h"

namespace glimmerhost {

// Data window: where the samples lie. Display window: what of the plane is the picture; samples
// may lie beyond it or cover a part of it alone. The two differ in a few formats only.
struct FileAttributes {
  std::string format;
  OIIO::ParamValueList list;
  OIIO::ROI data;
  OIIO::ROI display;
};

std::shared_ptr<const FileAttributes> KeepAttributes(const std::string& format,
                                                     const OIIO::ImageSpec& spec);

// Fills in windows and attributes for a file of that format, as far as they are true of it.
//   bits  of the samples to be written
//   spec  its size and channels are set
void SetMetadata(const Picture& picture, const std::string& format, int bits,
                 OIIO::ImageSpec* spec);

// What of the picture's metadata is not in the file that was written. Reads the file's head.
std::vector<NotCarried> MetadataLost(const Picture& picture, const std::string& format, int bits,
                                     const std::filesystem::path& written);

}  // namespace glimmerhost
