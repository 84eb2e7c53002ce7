// SPDX-License-Identifier: BSD-3-Clause
// The OpenGL that is in the process.
#pragma once

namespace lx::openfx {

// Null where the process has no OpenGL, or one without such a function. Loads nothing.
using GlFunction = void (*)();
GlFunction FindGlFunction(const char* name);

}  // namespace lx::openfx
