// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost psf: what a point of light becomes, as a picture to look at.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "fftlib/planes/emphasis_curve.h"
#include "host/glimmerhost/command.h"
#include "host/glimmerhost/processors.h"
#include "host/glimmerhost/run_options.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/keys.h"
#include "host/looks/page_file.h"
#include "host/looks/units.h"
#include "host/module/effect_module.h"
#include "host/module/frame_checks.h"
#include "host/module/frame_renderer.h"
#include "host/module/second_clip.h"
#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "host/support/progress.h"
#include "host/support/text.h"
#include "host/support/utf8_path.h"

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

int ParseZoom(const std::string& text, int side) {
  constexpr int kPleasantSide = 512;
  constexpr int kLargest = 64;
  if (text.empty()) {
    return std::clamp(kPleasantSide / side, 1, kLargest);
  }
  double zoom = 0.0;
  if (!ParseNumber(text, &zoom) || zoom != std::floor(zoom) || zoom < 1.0 || zoom > kLargest) {
    throw MustBe("--zoom", "a whole number from 1 to 64", text);
  }
  return static_cast<int>(zoom);
}

// The square around the light, each of its pixels enlarged, the brightest one white.
Picture Enlarge(const Picture& frame, Point light, int reach, const std::string& zoomText) {
  const int side = 2 * reach + 1;
  const int zoom = ParseZoom(zoomText, side);
  double brightest = 0.0;
  std::vector<double> shares;
  for (int y = light.y - reach; y <= light.y + reach; ++y) {
    for (int x = light.x - reach; x <= light.x + reach; ++x) {
      const bool inside = x >= 0 && y >= 0 && x < frame.width && y < frame.height;
      shares.push_back(inside ? ShareOfLight(frame.samples[FirstSample(frame, x, y)]) : 0.0);
      brightest = std::max(brightest, shares.back());
    }
  }
  if (brightest <= 0.0) {
    throw Failure("nothing comes of the light: with these options the aperture holds no pixel");
  }
  Picture picture = BlackPicture(side * zoom, side * zoom);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const double share =
          shares[static_cast<std::size_t>(y / zoom) * static_cast<std::size_t>(side) +
                 static_cast<std::size_t>(x / zoom)];
      const auto sample = static_cast<std::uint16_t>(share / brightest * 65535.0 + 0.5);
      std::fill_n(picture.samples.begin() + static_cast<std::ptrdiff_t>(FirstSample(picture, x, y)),
                  4, sample);
    }
  }
  return picture;
}

// Without a pixel aspect it is 1:1.
struct PsfOptions : RunOptions {
  std::string size = "1920x1080";  // of the frame that the aperture is for
  std::string zoom;                // a count, or empty for what makes some 512 pixels
};

// Renders one bright pixel through the module and writes what came of it: grey, the
// brightest spot white, the pixel itself in the middle, each pixel enlarged to a square.
// Throws Failure or UsageError; there is no output then.
void RunPsf(const PsfOptions& options) {
  NarrowProcessors(options.threads);
  const ModuleChoice choice = ChooseModule(options.engine, options.module);
  const Page page = LoadPage();
  const std::vector<LookLayer> layers = ReadLayers(page, options.look);
  const PictureLook look = PictureLookOf(page, layers);
  const auto [width, height] = ParseSize("--size", options.size);
  const quantel::cSize2 pixelAspect = look.pixelAspect.empty()
                                          ? quantel::cSize2{1, 1}
                                          : ParseRatio("--pixel-aspect", look.pixelAspect);
  auto values = StillValues(page, layers, width, height);
  if (ShapeOf(values) == Shape::kImage && look.spread.empty()) {
    throw UsageError("--shape image needs --spread here, a picture to cut the aperture from");
  }
  CheckGrid(*choice.engine, values, width, height);
  values[kEmphasisKey] = kEmphasis;
  ParseZoom(options.zoom, 1);
  PictureOutput output(Utf8Path(options.output), options.overwrite);
  Progress progress(!options.quiet);
  std::vector<std::string> remarks;
  const auto spread = OpenSpread(Utf8Path(look.spread), width, height, true, &remarks);
  progress.WarnAll(remarks);

  Picture frame = BlackPicture(width, height);
  const Point light{width / 2, height / 2};
  std::fill_n(
      frame.samples.begin() + static_cast<std::ptrdiff_t>(FirstSample(frame, light.x, light.y)), 4,
      std::uint16_t{65535});
  if (ShapeOf(values) == Shape::kImage &&
      ApertureHoldsNothing({1, values, {}, spread, pixelAspect})) {
    progress.Warn(kEmptyAperture);
  }
  progress.Show("Rendering " + options.size);
  {
    const EffectModule module(choice);
    RenderPicture(module, values, spread, pixelAspect, &frame);
  }
  if (TouchesEdge(frame)) {
    progress.Warn("the aperture reaches beyond a frame of " + options.size +
                  "; a larger --size shows all of it");
  }
  constexpr int kBorder = 2;
  progress.Show("Writing " + options.output);
  output.Write(Enlarge(frame, light, Reach(frame, light) + kBorder, options.zoom), 16);
  progress.Finish(options.output);
}

class PsfCommand final : public Command {
 public:
  void AddOptions(OptionSet* options) override {
    AddOutput(options, &options_);
    AddLook(options, LoadPage(), false, &options_);
    const std::string group = "Picture of the aperture";
    options->Value(
        "--size", &options_.size,
        {group, "WIDTHxHEIGHT", "The frame that it is for (default " + options_.size + ")"});
    options->Value("--zoom", &options_.zoom,
                   {group, "COUNT",
                    "Side of the square that shows a pixel, 1 to 64 (default: what makes the "
                    "picture some 512 pixels wide)"});
    AddLookFiles(options, &options_);
    AddPixelAspect(options, "1:1", &options_);
    AddThreads(options, &options_.threads);
    AddRunning(options, &options_);
    AddEngine(options, &options_.engine);
  }

  int Run(std::ostream& /*out*/) override {
    RunPsf(options_);
    return kExitDone;
  }

 private:
  PsfOptions options_;
};

}  // namespace

std::unique_ptr<Command> MakePsfCommand() { return std::make_unique<PsfCommand>(); }

}  // namespace glimmerhost
