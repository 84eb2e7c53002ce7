// SPDX-License-Identifier: BSD-3-Clause
// The two input clips of an instance, as both adapters take them from the host.
#pragma once

#include "effect/glimmer_blur_info.h"
#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/module_statics.h"

namespace allplugins {

// Asks for the main clip, then for the second one, and points the effect's ports at the
// adapter's members that hold them. Null inputs change nothing.
//   sourceClip, spreadClip  the adapter's members; they must live as long as the effect
inline void ConnectClips(const quantel::cPtr<qplugin::iQpluginInputs>& inputs,
                         quantel::cPtr<qplugin::iQpluginSource>* sourceClip,
                         quantel::cPtr<qplugin::iQpluginSource>* spreadClip,
                         lx::GlimmerBlurInfo* effect) {
  if (inputs) {
    *sourceClip = inputs->mainInput();
    effect->sourcePort.clip = sourceClip;
    *spreadClip = inputs->namedInput(keySpread);
    effect->spreadPort.clip = spreadClip;
  }
}

}  // namespace allplugins
