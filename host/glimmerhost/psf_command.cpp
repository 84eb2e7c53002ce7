// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost psf: what a point of light becomes, as a picture to look at.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "host/glimmerhost/command.h"
#include "host/glimmerhost/processors.h"
#include "host/glimmerhost/run_options.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/keys.h"
#include "host/looks/page_file.h"
#include "host/looks/units.h"
#include "host/module/effect_module.h"
#include "host/module/frame_checks.h"
#include "host/module/second_clip.h"
#include "host/pictures/picture_file.h"
#include "host/render/aperture_picture.h"
#include "host/support/failure.h"
#include "host/support/progress.h"
#include "host/support/text.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

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
  ApertureLook aperture;
  aperture.values = StillValues(page, layers, width, height);
  aperture.pixelAspect = pixelAspect;
  aperture.width = width;
  aperture.height = height;
  const bool isImage = ShapeOf(aperture.values) == Shape::kImage;
  if (isImage && look.spread.empty()) {
    throw UsageError("--shape image needs --spread here, a picture to cut the aperture from");
  }
  CheckGrid(*choice.engine, aperture.values, width, height);
  ParseZoom(options.zoom, 1);
  PictureOutput output(Utf8Path(options.output), options.overwrite);
  Progress progress(!options.quiet);
  std::vector<std::string> remarks;
  aperture.spread = OpenSpread(Utf8Path(look.spread), width, height, true, &remarks);
  progress.WarnAll(remarks);
  if (isImage && ApertureHoldsNothing(aperture)) {
    progress.Warn(kEmptyAperture);
  }
  progress.Show("Rendering " + options.size);
  const ApertureSpread spread = SpreadOneLight(EffectModule(choice), aperture);
  if (spread.isCut) {
    progress.Warn("the aperture reaches beyond a frame of " + options.size +
                  "; a larger --size shows all of it");
  }
  progress.Show("Writing " + options.output);
  output.Write(PictureOfSpread(spread, ParseZoom(options.zoom, spread.side)), 16);
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
