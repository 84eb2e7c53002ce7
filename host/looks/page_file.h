// SPDX-License-Identifier: BSD-3-Clause
// Where this host's page of the effect lies.
#pragma once

#include "host/looks/page.h"

namespace glimmerhost {

// The page that belongs to the program. Throws Failure if it is missing or broken.
Page LoadPage();

}  // namespace glimmerhost
