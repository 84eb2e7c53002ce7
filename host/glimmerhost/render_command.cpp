#include "host/glimmerhost/render_command.h"

#include <filesystem>
#include <iostream>
#include <map>
#include <new>

#include "host/glimmerhost/alpha.h"
#include "host/glimmerhost/border_pictures.h"
#include "host/glimmerhost/effect_module.h"
#include "host/glimmerhost/failure.h"
#include "host/glimmerhost/measures.h"
#include "host/glimmerhost/page_file.h"
#include "host/glimmerhost/parameter_store.h"
#include "host/glimmerhost/picture_file.h"
#include "host/glimmerhost/progress.h"

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

Picture ReadWithWarning(const std::string& file) {
  std::string warning;
  Picture picture = ReadPicture(file, &warning);
  if (!warning.empty()) {
    std::cerr << "glimmerhost: " << warning << '\n';
  }
  return picture;
}

// The second clip, null if there is none. The effect takes its aperture from a picture of
// the frame's own size.
quantel::cPtr<qplugin::iQpluginSource> OpenSpread(const std::string& file, const Picture& main,
                                                  bool premultiplied) {
  if (file.empty()) {
    return {};
  }
  Picture picture = ReadWithWarning(file);
  if (picture.width != main.width || picture.height != main.height) {
    throw Failure("--spread " + file + ": it is " + std::to_string(picture.width) + " x " +
                  std::to_string(picture.height) + "; it must have the input's size, " +
                  std::to_string(main.width) + " x " + std::to_string(main.height));
  }
  if (premultiplied) {
    Premultiply(&picture);
  }
  return quantel::cPtr<qplugin::iQpluginSource>(new StillClip(picture));
}

// One picture by an instance of its own, so that none depends on the one before.
void RenderPicture(const EffectModule& module, const std::map<std::string, Value>& values,
                   const quantel::cPtr<qplugin::iQpluginSource>& spread,
                   quantel::cSize2 pixelAspect, Picture* picture) {
  const quantel::cPtr<FrameImage> output(new FrameImage(picture->width, picture->height));
  const quantel::cPtr<FrameFormat> format(
      new FrameFormat(pixelAspect, {picture->width, picture->height}));
  try {
    const quantel::cPtr<qplugin::iQpluginRender> render = module.MakeRender();
    render->setTarget(quantel::cPtr<qplugin::iQpluginTarget>(new Target(output, format)));
    const quantel::cPtr<qplugin::iQpluginSource> main(new StillClip(*picture));
    render->setInputs(quantel::cPtr<qplugin::iQpluginInputs>(new Inputs(main, spread)));
    render->setParams(quantel::cPtr<qplugin::iQpluginParams>(new ParameterStore(values)));
    render->renderFrame(1, 0, 0);
  } catch (...) {
    RethrowModuleFault();
  }
  output->CopyTo(picture);
}

// Alpha as the output's format, or the input, has it.
void SettleAlpha(const PictureOutput& output, Alpha before, Picture* picture) {
  if (output.StraightOnly() || (before == Alpha::kStraight && !output.PremultipliedOnly())) {
    Unpremultiply(picture);
  }
}

}  // namespace

void RunRender(const RenderOptions& options) {
  const bool premultiplied = ParsePremultiplied(options.alpha);
  const Page page = LoadPage();
  PictureOutput output(options.output, options.overwrite);
  Progress progress(!options.quiet);

  progress.Show("Reading " + options.input);
  Picture picture = ReadWithWarning(options.input);
  const int bits = options.bits.empty() ? picture.bits : ParseBits(options.bits);
  const quantel::cSize2 pixelAspect = options.pixelAspect.empty()
                                          ? picture.pixelAspect
                                          : ParseRatio("--pixel-aspect", options.pixelAspect);
  const auto values = MakeStoreValues(page, options.values, picture.width, picture.height);
  CheckGrid(values, picture.width, picture.height);
  const auto spread = OpenSpread(options.spread, picture, premultiplied);

  const Alpha before = picture.alpha;
  if (premultiplied) {
    Premultiply(&picture);
  }
  progress.Show("Rendering " + std::to_string(picture.width) + " x " +
                std::to_string(picture.height));
  {
    const EffectModule module(options.module.empty() ? DefaultModuleFile()
                                                     : std::filesystem::path(options.module));
    RenderPicture(module, values, spread, pixelAspect, &picture);
  }
  if (premultiplied) {
    SettleAlpha(output, before, &picture);
  }
  progress.Show("Writing " + options.output);
  output.Write(picture, bits);
  progress.Finish(options.output);
}

}  // namespace glimmerhost
