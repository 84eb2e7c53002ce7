// SPDX-License-Identifier: BSD-3-Clause
// Proxies: a frame made smaller, so that its render keeps up with a hand.
//
// All that a look says of an aperture is a part of the picture's sides, so the same values serve.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "fftlib/backends/footprint.h"
#include "host/looks/page.h"
#include "host/viewer/clip/loaded_frame.h"

namespace glimmerhost {

struct ProxySize {
  int width = 0;
  int height = 0;

  bool operator==(const ProxySize&) const = default;
};

// How many points the grid has of a picture of that size; 0 where it would be too large.
double GridPoints(const lx::Footprint& engine, const std::map<std::string, Value>& values,
                  int width, int height);

// The largest size of the picture's shape whose grid has at most that part of the true frame's
// points: it fills a quick grid. The picture's own size for a part of 1 and above.
//   engine  of the module that renders
//   part    above 0; very small ones give a picture of a few pixels
ProxySize FindProxySize(const lx::Footprint& engine, const std::map<std::string, Value>& values,
                        int width, int height, double part);

// Means over what each smaller pixel covers; of the second clip, too.
std::shared_ptr<const LoadedFrame> MakeProxy(const LoadedFrame& frame, ProxySize size);

}  // namespace glimmerhost
