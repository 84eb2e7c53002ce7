// SPDX-License-Identifier: BSD-3-Clause
// What of pictures is seen in a viewport.
#pragma once

#include "host/pictures/picture.h"
#include "host/viewer/pixels/view_settings.h"

namespace glimmerhost {

// A pixel of the screen whose middle lies in the picture shows: from a zoom of 1 on, the picture's
// pixel there; below, the mean of what of the picture it covers. Only what is seen is worked on.
//   after  null for none. Where it has another size it stands for one of before's size: a proxy is
//          brought to the place of before, smoothly where that makes it larger
// Any thread may call.
ViewPixels ComposeView(const Picture& before, const Picture* after, const ViewSettings& settings,
                       const ViewPlace& place);

}  // namespace glimmerhost
