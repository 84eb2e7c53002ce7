// SPDX-License-Identifier: BSD-3-Clause
// How both adapters read the host's parameters into the effect's controls.
#pragma once

#include <cstdint>

#include "effect/glimmer_blur_info.h"
#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/wide_text.h"

namespace allplugins {

// The value of the shape control: the host counts from 0, the control from 1.
std::int32_t ReadShape(qplugin::iQpluginParams* store);

bool ReadMatch(qplugin::iQpluginParams* store);

// The eleven parameters beside shape and match, in the order of their keys. Numbers are
// kept as they come; sides lose what is behind the point.
void ReadSingleParameters(qplugin::iQpluginParams* store, lx::GlimmerBlurInfo* effect);

// The one of the eleven that has this key, if any.
void ReadSingleParameter(const quantel::wstring& key, qplugin::iQpluginParams* store,
                         lx::GlimmerBlurInfo* effect);

}  // namespace allplugins
