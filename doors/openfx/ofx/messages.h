// SPDX-License-Identifier: BSD-3-Clause
// OpenFX: messages to a person.
#pragma once

#include "doors/openfx/ofx/core.h"

namespace ofx {

extern "C" {

// Of version 1 there is the first function alone. Of version 2 a message may stand beside the
// effect until it is taken away.
struct MessageSuite {
  Status (*message)(void* effect, const char* type, const char* id, const char* format, ...);
  Status (*setPersistentMessage)(void* effect, const char* type, const char* id, const char* format,
                                 ...);
  Status (*clearPersistentMessage)(void* effect);
};

}  // extern "C"

inline constexpr char kMessageSuite[] = "OfxMessageSuite";
inline constexpr char kMessageError[] = "OfxMessageError";

}  // namespace ofx
