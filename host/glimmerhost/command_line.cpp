#include "host/glimmerhost/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "host/glimmerhost/failure.h"
#include "host/glimmerhost/info_command.h"
#include "host/glimmerhost/render_command.h"

namespace glimmerhost {
namespace {

constexpr const char* kDescription =
    "Renders pictures through GlimmerBlur, a lens defocus.\n\n"
    "  glimmerhost render night.png -o out.png --shape polygon --sides 6 --radius 40px\n\n"
    "Exit codes: 0 done, 1 the work failed, 2 wrong usage.";

constexpr const char* kVersion = "glimmerhost, reference host of GlimmerBlur 5.13";

int Complain(const std::string& what, int code) {
  std::string line = what;
  std::replace(line.begin(), line.end(), '\n', ' ');
  std::cerr << "glimmerhost: " << line << '\n';
  return code;
}

void AddRender(CLI::App* app, RenderOptions* options) {
  CLI::App* render = app->add_subcommand("render", "Render one picture");
  TypedValues& values = options->values;
  render->add_option("INPUT", options->input, "The picture: PNG, TIFF, EXR, DPX, JPEG, ...")
      ->required();
  render
      ->add_option("-o,--output", options->output,
                   "Where the result goes; its ending says the format. EXR holds half floats")
      ->required();
  const std::string aperture = "Aperture";
  render->add_option("--shape", values.shape, "circle, ellipse or polygon (default circle)")
      ->group(aperture);
  render
      ->add_option("--radius", values.radius,
                   "Both radii: 40px is a radius in pixels, 4% or 0.04 a diameter as a part of "
                   "the picture's width (default 0.02)")
      ->group(aperture);
  render->add_option("--radius-x", values.radiusX, "The horizontal radius alone")->group(aperture);
  render
      ->add_option("--radius-y", values.radiusY,
                   "The vertical radius alone; a circle has none of its own")
      ->group(aperture);
  render->add_flag("--match", values.match, "Polygon: the Y radius follows the X radius")
      ->group(aperture);
  render->add_option("--sides", values.sides, "Polygon: sides, 3 to 50 (default 6)")
      ->group(aperture);
  render->add_option("--rotation", values.rotation, "Degrees")->group(aperture);
  const std::string later = "Not offered yet: accepted, but without effect or limited";
  render->add_option("--emphasis", values.emphasis, "Highlight emphasis; only 0 to 1, which is off")
      ->group(later);
  render->add_flag("--emph-alpha", values.emphAlpha, "Emphasis also for alpha")->group(later);
  render
      ->add_option("--center", values.center,
                   "Image shape: X,Y in pixels from the top left (100px,50px), or in fractions "
                   "with y from the bottom")
      ->group(later);
  render->add_option("--radius-psf1", values.radiusPsf1, "Image shape: first radius")->group(later);
  render->add_option("--radius-psf2", values.radiusPsf2, "Image shape: second radius")
      ->group(later);
  render
      ->add_option("--spread", options->spread,
                   "Image shape: the picture that the aperture is cut from, of the input's size")
      ->group(later);
  render
      ->add_option("--set", values.set,
                   "KEY=VALUE: any parameter by its key, as the store holds it (PRM_Shape counts "
                   "from 0); info lists them. May be given more than once")
      ->take_all()
      ->allow_extra_args(false);
  render->add_option("--pixel-aspect", options->pixelAspect,
                     "A:B, the pixel aspect to render with (default: the file's)");
  render->add_option("--alpha", options->alpha,
                     "premultiplied (default): colour of a file with straight alpha is "
                     "multiplied by it on the way in and divided on the way out; as-is: samples "
                     "are left alone");
  render->add_option("--bits", options->bits,
                     "8 or 16 (default: the input's; 16 for floating point)");
  render->add_flag("--overwrite", options->overwrite, "Replace an existing output");
  render->add_flag("--quiet", options->quiet, "No progress line");
  render->add_option("--module", options->module, "Another module file");
}

int Run(int argc, const char* const* argv) {
  CLI::App app(kDescription, "glimmerhost");
  app.require_subcommand(1);
  app.set_version_flag("--version", kVersion);
  RenderOptions render;
  AddRender(&app, &render);
  std::string infoModule;
  CLI::App* info =
      app.add_subcommand("info", "Print the module's classes and the parameters of its page");
  info->add_option("--module", infoModule, "Another module file");
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& done) {
    return app.exit(done);
  } catch (const CLI::ParseError& fault) {
    return Complain(std::string(fault.what()) + " (--help explains)", kExitUsage);
  }
  if (info->parsed()) {
    RunInfo(infoModule, std::cout);
  } else {
    RunRender(render);
  }
  return kExitDone;
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  try {
    return Run(argc, argv);
  } catch (const UsageError& fault) {
    return Complain(fault.what(), kExitUsage);
  } catch (const std::bad_alloc&) {
    return Complain("there is not enough memory for this picture", kExitFailed);
  } catch (const std::exception& fault) {
    return Complain(fault.what(), kExitFailed);
  }
}

}  // namespace glimmerhost
