// SPDX-License-Identifier: BSD-3-Clause
// The clock of the base services.
#pragma once

namespace lx {

// Seconds since an arbitrary start. Never goes back.
double get_seconds();

}  // namespace lx
