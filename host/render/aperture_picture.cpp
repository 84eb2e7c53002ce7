// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/aperture_picture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fftlib/planes/emphasis_curve.h"
#include "host/looks/keys.h"
#include "host/module/frame_checks.h"
#include "host/module/frame_renderer.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

// A pixel's light spread over thousands is nearly nothing in 16 bits. With an emphasis the
// effect lifts it, and the curve, which is known, turns it back into shares of the light.
constexpr double kEmphasis = 50.0;

double ShareOfLight(std::uint16_t sample) {
  return lx::ApplyCurve(sample / 65535.0, lx::MakeHyperbola(kEmphasis));
}

struct Point {
  int x;
  int y;
};

Picture BlackPicture(int width, int height) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.grey = true;
  picture.samples.assign(picture.PixelCount() * 4, 0);
  return picture;
}

std::size_t FirstSample(const Picture& picture, int x, int y) {
  return (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
          static_cast<std::size_t>(x)) *
         4;
}

void FillPixel(int x, int y, std::uint16_t sample, Picture* picture) {
  std::fill_n(picture->samples.begin() + static_cast<std::ptrdiff_t>(FirstSample(*picture, x, y)),
              4, sample);
}

// How far from the light the aperture reaches, in pixels along x or y.
int Reach(const Picture& picture, Point light) {
  int reach = 0;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      if (picture.samples[FirstSample(picture, x, y)] != 0) {
        reach = std::max({reach, std::abs(x - light.x), std::abs(y - light.y)});
      }
    }
  }
  return reach;
}

bool TouchesEdge(const Picture& picture) {
  const auto isLit = [&](int x, int y) { return picture.samples[FirstSample(picture, x, y)] != 0; };
  for (int x = 0; x < picture.width; ++x) {
    if (isLit(x, 0) || isLit(x, picture.height - 1)) {
      return true;
    }
  }
  for (int y = 0; y < picture.height; ++y) {
    if (isLit(0, y) || isLit(picture.width - 1, y)) {
      return true;
    }
  }
  return false;
}

// Of the square around the light.
ApertureSpread SharesOf(const Picture& frame, Point light, int reach) {
  ApertureSpread spread;
  spread.side = 2 * reach + 1;
  double brightest = 0.0;
  for (int y = light.y - reach; y <= light.y + reach; ++y) {
    for (int x = light.x - reach; x <= light.x + reach; ++x) {
      const bool inside = x >= 0 && y >= 0 && x < frame.width && y < frame.height;
      spread.shares.push_back(inside ? ShareOfLight(frame.samples[FirstSample(frame, x, y)]) : 0.0);
      brightest = std::max(brightest, spread.shares.back());
    }
  }
  if (brightest <= 0.0) {
    throw Failure("nothing comes of the light: with these options the aperture holds no pixel");
  }
  for (double& share : spread.shares) {
    share /= brightest;
  }
  return spread;
}

}  // namespace

bool ApertureHoldsNothing(const ApertureLook& look) {
  return ApertureHoldsNothing(FrameInput{1, look.values, {}, look.spread, look.pixelAspect});
}

ApertureSpread SpreadOneLight(const EffectModule& module, const ApertureLook& look) {
  constexpr int kBorder = 2;
  std::map<std::string, Value> values = look.values;
  values[kEmphasisKey] = kEmphasis;
  Picture frame = BlackPicture(look.width, look.height);
  const Point light{look.width / 2, look.height / 2};
  FillPixel(light.x, light.y, 65535, &frame);
  // An aperture that holds no pixel leaves nothing of the light, which has words of its own below.
  FrameRenderer renderer(module, false);
  renderer
      .Render({1, values, quantel::cPtr<FrameImage>(new FrameImage(frame)), look.spread,
               look.pixelAspect})
      ->CopyTo(&frame);
  ApertureSpread spread = SharesOf(frame, light, Reach(frame, light) + kBorder);
  spread.isCut = TouchesEdge(frame);
  return spread;
}

Picture PictureOfSpread(const ApertureSpread& spread, int zoom) {
  Picture picture = BlackPicture(spread.side * zoom, spread.side * zoom);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const double share =
          spread.shares[static_cast<std::size_t>(y / zoom) * static_cast<std::size_t>(spread.side) +
                        static_cast<std::size_t>(x / zoom)];
      FillPixel(x, y, static_cast<std::uint16_t>(share * 65535.0 + 0.5), &picture);
    }
  }
  return picture;
}

}  // namespace glimmerhost
