// SPDX-License-Identifier: BSD-3-Clause
// What a host is told of the effect before it makes one.
#pragma once

#include <string>

#include "doors/openfx/host.h"

namespace lx::openfx {

void Describe(ofx::ImageEffect* effect);

// The clips and parameters of a context. In the general one a picture may be connected as the
// aperture; hosts that filter have no place for it. Throws for contexts that were not offered.
void DescribeInContext(ofx::ImageEffect* effect, const std::string& context);

}  // namespace lx::openfx
