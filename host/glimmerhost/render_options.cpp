// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/render_options.h"

#include "host/pictures/colour_config.h"
#include "host/pictures/picture_formats.h"
#include "host/pictures/plugged_formats.h"
#include "host/support/channel_patterns.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

// What of a shot is rendered, and what becomes of frames that fail.
void AddShot(OptionSet* options, RenderOptions* render) {
  options->Value("--frames", &render->frames,
                 {kShotGroup, "LIST",
                  "1-10,20-30, 1-100x5 (every fifth), 100-1 (backwards); default: the list in the "
                  "input's name (shot.1-100#.tif), or the frames that its folder has"});
  options->Value(std::string("--") + kShot, &render->look[kShot],
                 {kShotGroup, "FIRST-LAST",
                  "The frames that the shot has, which times of keyframes count in (default: those "
                  "of INPUT, in its name's list or in its folder). A frame outside is refused"});
  options->Switch("--skip-existing", &render->skipExisting, kShotGroup,
                  "Leave out frames whose output exists; with --manifest only those that would "
                  "come out the same, and other programs may share the shot");
  options->Switch("--keep-going", &render->keepGoing, kShotGroup,
                  "Render the rest where a frame fails; the program still fails in the end");
  options->Switch("--carry-psf", &render->carryPsf, kShotGroup,
                  "Use one instance of the effect for all frames. It keeps an aperture for values "
                  "that are near enough, so a frame may depend on those before it");
  options->Switch("--explain", &render->explain, kShotGroup,
                  "Render nothing; print grids, memory and how often the aperture is built");
  options->Switch("--dry-run", &render->dryRun, kShotGroup,
                  "Render nothing; list the files that would be read and written");
}

void AddPixels(OptionSet* options, RenderOptions* render) {
  options->Value(std::string("--") + kAlpha, &render->look[kAlpha],
                 {kPixelsGroup,
                  "MODE",
                  "premultiplied (default): colour of a file with straight alpha is multiplied by "
                  "it on the way in and divided on the way out; as-is: samples are left alone",
                  {"premultiplied", "as-is"}});
  options->ReadValue("--bits", [render](const auto& text) { ParseBits(text, &render->coding); },
                     {kPixelsGroup, "DEPTH",
                      "8, 10, 12, 16, half or float, of which each format has some (default: the "
                      "input's; 16 for floating point, half in an EXR)",
                      kBitsChoices});
  options->Value("--compression", &render->coding.compression,
                 {kPixelsGroup, "NAME",
                  "How the output is compressed: the manual tells what EXR, TIFF and PNG have "
                  "(default: as the input where it is of the same format)",
                  kCompressionChoices});
  options->ReadValue(
      "--quality", [render](const auto& text) { render->coding.quality = ParseQuality(text); },
      {kPixelsGroup, "NUMBER",
       "1 to 100 for JPEG, more is better; for the compressions dwaa and dwab of EXR their level, "
       "more is smaller (usually 45)"});
  options->ReadValue(
      "--blur-channels",
      [render](const auto& text) { render->blurChannels = ParseChannelPatterns(text); },
      {kPixelsGroup,
       "LIST",
       "EXR to EXR: also blur these channels beside the picture's (diffuse.*,Z). "
       "Others go on as they are",
       {},
       kHasPicturePlugin});
  AddPixelAspect(options, "the file's", render);
  options->Value(std::string("--") + kMix, &render->look[kMix],
                 {kPixelsGroup, "NUMBER",
                  "0 to 1 (default): how much of the blur is seen over the frame as it was"});
  options->Switch("--grow", &render->grow, kPixelsGroup,
                  "Grow the canvas on all sides by as far as the aperture reaches, for pictures "
                  "with alpha. An EXR keeps its display window");
  options->Value("--mask", &render->mask,
                 {kPixelsGroup, "FILE",
                  "A picture of the frame's size, or a sequence, whose first channel says where "
                  "the blur is seen"});
  options->Value("--precision", &render->precision,
                 {kPixelsGroup,
                  "ROAD",
                  "auto (default): floating point goes through the library, in floats and past 1, "
                  "and whole numbers through the module, in 16 bits; float or 16: one for all",
                  {"auto", "float", "16"}});
  options->Switch("--centred", &render->centred, kPixelsGroup,
                  "Put drawn apertures exactly on their pixel, in floats; the module has them half "
                  "a pixel off");
  options->ReadValue("--range",
                     [render](const auto& text) {
                       render->range = RangeMapping::Parse(text);
                       render->isRangeGiven = true;
                     },
                     {kPixelsGroup,
                      "RANGE",
                      "With 16 bits, which it implies: how floating point comes into 0 to 1, and "
                      "back where the output is floating point, too: clip, scale:MAX or log:MAX",
                      {"clip", "scale:", "log:"}});
}

void AddColours(OptionSet* options, ColourOptions* colours) {
  const std::string group = "Colour spaces";
  options->Value("--colour-in", &colours->in,
                 {group,
                  "SPACE",
                  "The space that the input's colours are in; the effect works in scene_linear",
                  {},
                  kHasColourManagement});
  options->Value("--colour-out", &colours->out,
                 {group,
                  "SPACE",
                  "The space of the output (default: the input's). If it is given alone, the input "
                  "is in scene_linear",
                  {},
                  kHasColourManagement});
  options->Value("--colour-config", &colours->config,
                 {group,
                  "FILE",
                  "The OpenColorIO configuration that names them (default: what OCIO in the "
                  "environment names)",
                  {},
                  kHasColourManagement});
}

}  // namespace

void AddRenderOptions(OptionSet* options, const Page& page, RenderOptions* render) {
  options->Argument(
      "INPUT", &render->input,
      std::string("The picture, a sequence (shot.####.tif), or with render a film, or "
                  "- for PAM pictures on the standard input: ") +
          kReadableFormats);
  AddOutput(options, render);
  AddLook(options, page, true, render);
  AddShot(options, render);
  AddLookFiles(options, render);
  options->Value("--save-params", &render->saveParams,
                 {kLookGroup, "FILE",
                  "Write the look that is used, defaults included, to a look file for --params"});
  AddPixels(options, render);
  AddColours(options, &render->colours);
  AddThreads(options, &render->threads);
  options->Value("--manifest", &render->manifest,
                 {kFilesGroup, "FILE",
                  "Write a line of JSON a frame to this file: hashes of input and output, values, "
                  "versions, seconds"});
  options->ReadValue("--progress",
                     [render](const auto& text) { render->report = ShotReport::ParseForm(text); },
                     {kRunningGroup,
                      "FORM",
                      "auto (default: bar on a terminal, lines elsewhere), bar, lines or json",
                      {"auto", "bar", "lines", "json"}});
  AddRunning(options, render);
}

}  // namespace glimmerhost
