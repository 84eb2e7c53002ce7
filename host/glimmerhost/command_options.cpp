#include "host/glimmerhost/command_options.h"

#include <string>

#include "host/module/module_choice.h"
#include "host/pictures/picture_formats.h"
#include "host/session/session_script.h"

namespace glimmerhost {
namespace {

// The groups of options that several commands have.
constexpr const char* kFiles = "Files";
constexpr const char* kParameters = "Parameters from files and by key";
constexpr const char* kPixels = "Pixels";
constexpr const char* kRunning = "Running";

constexpr const char* kModuleText = "Another module file, which brings its own engine";

std::string EngineText() {
  return "What the effect transforms by: " + EngineNames() + " (default " + kDefaultEngine +
         "); info says what they are";
}

// A flag; with a value behind an equals sign, that value.
CLI::Option* AddSwitch(CLI::App* app, const std::string& name, std::string* value,
                       const std::string& text) {
  return app->add_flag(name + "{on}", *value, text);
}

// The options that say what the aperture is.
void AddAperture(CLI::App* app, RunOptions* options) {
  TypedValues& values = options->values;
  const std::string aperture = "Aperture";
  app->add_option("--shape", values.shape, "circle, ellipse, polygon or image (default circle)")
      ->group(aperture);
  app->add_option("--radius", values.radius,
                  "Both radii: 40px is a radius in pixels, 4% or 0.04 a diameter as a part of "
                  "the picture's width (default 0.02)")
      ->group(aperture);
  app->add_option("--radius-x", values.radiusX, "The horizontal radius alone")->group(aperture);
  app->add_option("--radius-y", values.radiusY,
                  "The vertical radius alone; a circle has none of its own")
      ->group(aperture);
  AddSwitch(app, "--match", &values.match, "Polygon: the Y radius follows the X radius")
      ->group(aperture);
  app->add_option("--sides", values.sides, "Polygon: sides, 3 to 50 (default 6)")->group(aperture);
  app->add_option("--rotation", values.rotation, "Degrees")->group(aperture);
  const std::string image = "Aperture of the image shape: a disc with a soft edge out of a picture";
  app->add_option("--spread", options->spread,
                  "The picture, centred on the frame and not scaled; without it the frame itself")
      ->group(image);
  app->add_option("--center", values.center,
                  "Where the disc is cut: X,Y in percent (50%,50%, the default) or fractions, "
                  "with y from the bottom, or in pixels from the top left (100px,50px)")
      ->group(image);
  app->add_option("--radius-psf1", values.radiusPsf1,
                  "One radius of its soft edge, as --radius (default 0.02)")
      ->group(image);
  app->add_option("--radius-psf2", values.radiusPsf2,
                  "The other radius, in either order (default 0.04)")
      ->group(image);
}

// Each over those before it.
void AddParameters(CLI::App* app, RunOptions* options) {
  TypedValues& values = options->values;
  app->add_option("--preset", values.preset,
                  "A look that comes with the program; glimmerhost presets lists them")
      ->group(kParameters);
  app->add_option("--params", values.file,
                  "A file of values named as the options without dashes, over the preset: TOML "
                  "(shape = \"image\"), or JSON if it ends in .json; options go over both")
      ->group(kParameters);
  app->add_option("--set", values.set,
                  "KEY=VALUE: any parameter by its key, as the store holds it (PRM_Shape counts "
                  "from 0); info lists them. May be given more than once")
      ->take_all()
      ->allow_extra_args(false)
      ->group(kParameters);
}

void AddHighlights(CLI::App* app, RunOptions* options) {
  const std::string highlights = "Highlights";
  app->add_option("--emphasis", options->values.emphasis,
                  "How much highlights outweigh the rest: up to 1 off (the default), 50 strong, "
                  "500 the most")
      ->group(highlights);
  AddSwitch(app, "--emph-alpha", &options->values.emphAlpha, "Emphasis also for alpha")
      ->group(highlights);
}

void AddPictureOutput(CLI::App* app, RunOptions* options) {
  app->add_option("-o,--output", options->output,
                  std::string("Where the result goes. Its ending says the format: ") +
                      kWritableEndings +
                      "; with render also - for PAM pictures on the standard output")
      ->required()
      ->group(kFiles);
}

void AddPixelAspect(CLI::App* app, RunOptions* options, const std::string& otherwise) {
  app->add_option("--pixel-aspect", options->pixelAspect,
                  "A:B, the pixel aspect to work with (default: " + otherwise + ")")
      ->group(kPixels);
}

void AddThreads(CLI::App* app, RunOptions* options) {
  app->add_option("--threads", options->threads,
                  "Processors to work on (default: all that the process may run on)")
      ->group(kRunning);
}

// How the work is done, after what is to be done.
void AddRunning(CLI::App* app, RunOptions* options) {
  app->add_flag("--overwrite", options->overwrite, "Replace an existing output")->group(kFiles);
  app->add_flag("--quiet", options->quiet, "No progress line")->group(kRunning);
  app->add_option("--module", options->module, kModuleText)->group(kRunning);
}

void AddEngine(CLI::App* app, RunOptions* options) {
  app->add_option("--engine", options->engine, EngineText())->group(kRunning);
}

// What of a shot is rendered, and what becomes of frames that fail.
//   chunk  what --chunk means
void AddShot(CLI::App* app, RenderOptions* options, const std::string& chunk) {
  const std::string shot = "Shot";
  app->add_option("--frames", options->frames,
                  "1-10,20-30, 1-100x5 (every fifth), 100-1 (backwards); default: the list in the "
                  "input's name (shot.1-100#.exr), or the frames that its folder has")
      ->group(shot);
  app->add_option("--chunk", options->chunk, chunk)->group(shot);
  app->add_flag("--skip-existing", options->skipExisting, "Leave out frames whose output is there")
      ->group(shot);
  app->add_flag("--keep-going", options->keepGoing,
                "Render the rest where a frame fails; the program fails all the same")
      ->group(shot);
  app->add_flag("--carry-psf", options->carryPsf,
                "One instance of the effect for all frames: it keeps an aperture for values that "
                "are near enough, so a frame may depend on those before it")
      ->group(shot);
  app->add_flag("--explain", options->explain,
                "Render nothing; print grids, memory and how often the aperture is built")
      ->group(shot);
  app->add_flag("--dry-run", options->dryRun,
                "Render nothing; list the files that would be read and written")
      ->group(shot);
}

void AddColours(CLI::App* app, ColourOptions* options) {
  const std::string colours = "Colour spaces";
  app->add_option("--colour-in", options->in,
                  "The space that the input's colours are in; the effect works in scene_linear")
      ->group(colours);
  app->add_option("--colour-out", options->out,
                  "The space of the output (default: the input's; scene_linear if alone, for the "
                  "input)")
      ->group(colours);
  app->add_option("--colour-config", options->config,
                  "The OpenColorIO configuration that names them (default: what OCIO in the "
                  "environment names)")
      ->group(colours);
}

void AddRenderOptions(CLI::App* render, RenderOptions* options, const std::string& chunk) {
  render
      ->add_option(
          "INPUT", options->input,
          std::string("The picture, a sequence (shot.####.exr), or with render - for PAM pictures "
                      "on the standard input: ") +
              kReadableFormats)
      ->required();
  AddPictureOutput(render, options);
  AddAperture(render, options);
  AddHighlights(render, options);
  AddShot(render, options, chunk);
  AddParameters(render, options);
  render
      ->add_option("--save-params", options->saveParams,
                   "A TOML or JSON file for the parameters that are used, for --params")
      ->group(kParameters);
  render
      ->add_option("--alpha", options->alpha,
                   "premultiplied (default): colour of a file with straight alpha is "
                   "multiplied by it on the way in and divided on the way out; as-is: samples "
                   "are left alone")
      ->group(kPixels);
  render
      ->add_option("--bits", options->bits, "8 or 16 (default: the input's; 16 for floating point)")
      ->group(kPixels);
  AddPixelAspect(render, options, "the file's");
  render
      ->add_option("--range", options->range,
                   "Floating point into 0 to 1, and back into an EXR: clip (default), scale:MAX or "
                   "log:MAX")
      ->group(kPixels);
  AddColours(render, &options->colours);
  AddThreads(render, options);
  render
      ->add_option("--manifest", options->manifest,
                   "A file that receives a line of JSON a frame: hashes of input and output, "
                   "values, versions, seconds")
      ->group(kFiles);
  render
      ->add_option("--progress", options->progress,
                   "auto (default: bar on a terminal, lines elsewhere), bar, lines or json")
      ->group(kRunning);
  AddRunning(render, options);
}

}  // namespace

CLI::App* AddRender(CLI::App* app, RenderOptions* options) {
  CLI::App* render = app->add_subcommand("render", "Render a picture, or a shot of them");
  AddRenderOptions(render, options, "K/N: only the K-th of N parts of the frames");
  AddEngine(render, options);
  return render;
}

CLI::App* AddSubmit(CLI::App* app, SubmitOptions* options) {
  CLI::App* submit = app->add_subcommand(
      "submit", "Render a shot in chunks, by processes on this machine or by a farm");
  submit->footer(
      "Each chunk is a glimmerhost render --chunk K/N --skip-existing with a manifest of its own,\n"
      "beside the output or called after --manifest: out.manifest.0003-of-0012.jsonl. In the end\n"
      "glimmerhost check holds the frames against all of them. --dry-run prints what would be\n"
      "run.");
  AddRenderOptions(submit, options,
                   "The most frames of a chunk; chunks are consecutive frames of the list, as even "
                   "as can be (default 20, locally also no more than gives every process a chunk)");
  const std::string farm = "Farm";
  submit
      ->add_option("--engine", options->engines,
                   "local (default): processes on this machine; slurm: an array of Slurm jobs and "
                   "one for the check, which is what this program then leaves them to. Or, and "
                   "this beside the other: " +
                       EngineNames() + ", what the effect transforms by (default " +
                       kDefaultEngine + "), which the chunks are told")
      ->take_all()
      ->allow_extra_args(false)
      ->group(farm);
  submit
      ->add_option("--jobs", options->jobs,
                   "local: processes at once (default 1, as one frame takes all processors; with "
                   "more, --threads says how many each of them has)")
      ->group(farm);
  submit
      ->add_option("--sbatch", options->sbatch,
                   "slurm: an option for sbatch in one word (--partition=long, --time=2:00:00), "
                   "over those that come from the shot. May be given more than once")
      ->take_all()
      ->allow_extra_args(false)
      ->group(farm);
  return submit;
}

CLI::App* AddPsf(CLI::App* app, PsfOptions* options) {
  CLI::App* psf = app->add_subcommand(
      "psf", "Write what one bright pixel becomes, enlarged: the aperture as it is used");
  AddPictureOutput(psf, options);
  AddAperture(psf, options);
  AddParameters(psf, options);
  psf->add_option("--size", options->size,
                  "WIDTHxHEIGHT of the frame it is for (default 1920x1080)");
  psf->add_option("--zoom", options->zoom,
                  "Side of the square that shows a pixel, 1 to 64 (default: what makes the "
                  "picture some 512 pixels wide)");
  AddPixelAspect(psf, options, "1:1");
  AddThreads(psf, options);
  AddRunning(psf, options);
  AddEngine(psf, options);
  return psf;
}

CLI::App* AddPage(CLI::App* app, PageOptions* options) {
  CLI::App* page = app->add_subcommand(
      "page", "Write a picture with the effect's handles on it, as its page draws them");
  page->add_option("INPUT", options->input, "The picture that the page is opened over")->required();
  AddPictureOutput(page, options);
  AddAperture(page, options);
  AddParameters(page, options);
  AddPixelAspect(page, options, "the file's");
  AddRunning(page, options);
  AddEngine(page, options);
  return page;
}

CLI::App* AddSession(CLI::App* app, SessionOptions* options) {
  CLI::App* session = app->add_subcommand(
      "session", "Play a person at the effect's page and its handles from a script");
  session->add_option("SCRIPT", options->script, "A text file with one step a line")->required();
  session->footer("Steps of a script, of which load must be the first:\n" + SessionForms() +
                  "Pictures lie beside the script; # begins a comment.");
  session->add_option("-o,--output", options->output,
                      "The folder that the script's files go into (default: the current one)");
  session->add_flag("--trace", options->trace,
                    "Print every call between host and module, step by step");
  AddAperture(session, options);
  AddHighlights(session, options);
  AddParameters(session, options);
  AddPixelAspect(session, options, "the file's");
  AddThreads(session, options);
  AddRunning(session, options);
  AddEngine(session, options);
  return session;
}

CLI::App* AddWisdom(CLI::App* app, WisdomOptions* options) {
  CLI::App* wisdom = app->add_subcommand(
      "wisdom", "Make the directories of the measured plans, and say where and whether they are");
  wisdom->footer(
      "The effect measures its transforms, and keeps what it learns, wherever the environment\n"
      "has LX_USE_FFTW_WISDOM, whatever its value. Without it no file is touched.");
  wisdom->add_flag("--measure", options->measure,
                   "Measure the plans of the grids from 512 to 4096 now; takes some seconds");
  wisdom
      ->add_option("--grid", options->grids,
                   "Measure only grids of that side: 512, 1024, 2048 or 4096. May be given more "
                   "than once")
      ->take_all()
      ->allow_extra_args(false);
  wisdom->add_option("--threads", options->threads,
                     "Processors that the plans are for (default: all that the process may run "
                     "on)");
  wisdom->add_flag("--quiet", options->quiet, "No progress line");
  wisdom->add_option("--module", options->module, "Another module file");
  return wisdom;
}

CLI::App* AddCheck(CLI::App* app, CheckOptions* options) {
  CLI::App* check = app->add_subcommand(
      "check", "Say whether the outputs of a manifest are all there, and what was written");
  check->add_option("MANIFEST", options->manifests, "Files that render --manifest has written")
      ->required();
  check->add_option("--frames", options->frames,
                    "Frames that must be in them (default: those that are)");
  return check;
}

CLI::App* AddInfo(CLI::App* app, InfoOptions* options) {
  CLI::App* info = app->add_subcommand(
      "info", "Print the engines, the module's classes and the parameters of its page");
  info->add_option("--engine", options->engine, EngineText());
  info->add_option("--module", options->module, kModuleText);
  return info;
}

}  // namespace glimmerhost
