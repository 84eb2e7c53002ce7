#include "host/glimmerhost/render_command.h"

#include <filesystem>
#include <map>

#include "host/glimmerhost/alpha.h"
#include "host/glimmerhost/effect_module.h"
#include "host/glimmerhost/frame_checks.h"
#include "host/glimmerhost/frame_render.h"
#include "host/glimmerhost/measures.h"
#include "host/glimmerhost/page_file.h"
#include "host/glimmerhost/processors.h"
#include "host/glimmerhost/progress.h"
#include "host/glimmerhost/shot_values.h"
#include "host/glimmerhost/text.h"
#include "host/pictures/picture_file.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

int ParseBits(const std::string& text) {
  if (text == "8" || text == "16") {
    return text == "8" ? 8 : 16;
  }
  throw UsageError("--bits " + text + ": allowed is 8 or 16");
}

bool ParsePremultiplied(const std::string& text) {
  if (text == "premultiplied" || text == "as-is") {
    return text == "premultiplied";
  }
  throw UsageError("--alpha " + text + ": allowed is premultiplied or as-is");
}

// The inverse curve turns what rounding leaves of a black area into light: half a 16-bit
// step at an emphasis of 80, a hundred at 100.
void WarnOfNoise(const std::map<std::string, Value>& values, Progress* progress) {
  constexpr double kQuiet = 75.0;
  const double emphasis = std::get<double>(values.at("PRM_Emphasis"));
  if (emphasis > kQuiet) {
    progress->Warn("an emphasis of " + Shortest(emphasis) +
                   " shows rounding noise in dark areas; up to 75 none can be seen");
  }
}

}  // namespace

void RunRender(const RenderOptions& options) {
  const bool premultiplied = ParsePremultiplied(options.alpha);
  NarrowProcessors(options.threads);
  const Page page = LoadPage();
  PictureOutput output(options.output, options.overwrite);
  Progress progress(!options.quiet);

  progress.Show("Reading " + options.input);
  Picture picture = ReadWithWarning(options.input, &progress);
  const int bits = options.bits.empty() ? picture.bits : ParseBits(options.bits);
  const quantel::cSize2 pixelAspect = options.pixelAspect.empty()
                                          ? picture.pixelAspect
                                          : ParseRatio("--pixel-aspect", options.pixelAspect);
  const auto values = MakeStoreValues(page, options.values, picture.width, picture.height);
  CheckGrid(values, picture.width, picture.height);
  const auto spread =
      OpenSpread(options.spread, picture.width, picture.height, premultiplied, &progress);
  WarnOfNoise(values, &progress);

  const Alpha before = picture.alpha;
  if (premultiplied) {
    Premultiply(&picture);
  }
  progress.Show("Rendering " + std::to_string(picture.width) + " x " +
                std::to_string(picture.height));
  {
    const EffectModule module(ModuleFileOf(options.module));
    RenderPicture(module, values, spread, pixelAspect, &picture);
  }
  progress.Show("Writing " + options.output);
  if (premultiplied) {
    SettleAlpha(output, before, &picture);
  }
  output.Write(picture, bits);
  progress.Finish(options.output);
}

}  // namespace glimmerhost
