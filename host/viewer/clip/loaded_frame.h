// SPDX-License-Identifier: BSD-3-Clause
// LoadedFrame: one frame in memory, as a render would give it to the effect.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/module/border_pictures.h"
#include "host/pictures/picture.h"
#include "hostframe/interfaces/geometry.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// Nothing in it changes once it is shared: any thread may read it.
struct LoadedFrame {
  int frame = 1;
  std::filesystem::path file;
  std::shared_ptr<const Picture> picture;  // floats of a file of floats, 16 bits of others
  quantel::cPtr<FrameImage> source;        // what the module is given; null for floats
  quantel::cPtr<FrameImage> spread;        // of the second clip; null for none
  quantel::cSize2 pixelAspect{1, 1};       // of the look, or of the file
  std::vector<std::string> remarks;        // for a person, of the picture
  std::vector<std::string> spreadRemarks;  // and of the second clip
};

// What a look says of how frames are read.
struct FrameReading {
  std::string spread;                 // the second clip, a file or a sequence; empty for none
  bool premultiplied = true;          // whether straight alpha is multiplied in
  quantel::cSize2 pixelAspect{0, 0};  // 0:0 for the file's

  bool operator==(const FrameReading& other) const {
    return spread == other.spread && premultiplied == other.premultiplied &&
           pixelAspect.first == other.pixelAspect.first &&
           pixelAspect.second == other.pixelAspect.second;
  }
};

}  // namespace glimmerhost
