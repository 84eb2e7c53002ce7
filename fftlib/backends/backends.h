// SPDX-License-Identifier: BSD-3-Clause
// Back-ends by name.
#pragma once

#include <memory>
#include <string_view>

#include "fftlib/backends/backend.h"

namespace lx {

// One of that name, with nothing loaded. Null for a name that the list of footprints does not have,
// and where memory has run out. Whoever calls this links every back-end.
std::unique_ptr<Backend> MakeBackend(std::string_view name);

}  // namespace lx
