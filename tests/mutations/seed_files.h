// SPDX-License-Identifier: BSD-3-Clause
// The files that mutations begin with: small ones, so that a run is short.
#pragma once

#include <string>

#include "host/pictures/picture.h"

namespace mutations {

// A picture with edges and a colour that differs from frame to frame.
glimmerhost::Picture SmallPicture(int width, int height, glimmerhost::Alpha alpha, int frame = 1);

// The same as a file. Its ending says the format.
void WriteSmall(const std::string& name, int width, int height, int bits,
                glimmerhost::Alpha alpha = glimmerhost::Alpha::kNone, int frame = 1);

// Two pictures of PAM, one behind the other.
std::string SmallPam();

}  // namespace mutations
