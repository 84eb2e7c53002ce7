// SPDX-License-Identifier: BSD-3-Clause
// The frame of the second clip, which the image shape takes its aperture from.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/module/border_pictures.h"
#include "host/pictures/picture.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// Null for no file. The effect wants it as large as the frame: a smaller picture is centred on
// black, a larger one loses its edges, and neither is scaled.
//   premultiplied  whether straight alpha is multiplied in, as it is for the frame
//   remarks        receives a line if something of the picture was lost
// Throws as reading a picture does.
quantel::cPtr<FrameImage> OpenSpread(const std::filesystem::path& file, int width, int height,
                                     bool premultiplied, std::vector<std::string>* remarks);

// Of a picture of floats without a second clip: the frame itself, cut to 0 to 1, as apertures are
// of whole numbers on either road.
quantel::cPtr<FrameImage> SpreadOfItself(const Picture& picture);

}  // namespace glimmerhost
