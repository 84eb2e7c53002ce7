// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/render_plan.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "host/looks/idle_options.h"
#include "host/looks/parameter_file.h"
#include "host/looks/units.h"
#include "host/pictures/alpha.h"
#include "host/shots/frame_list.h"
#include "host/support/failure.h"
#include "host/support/text.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

bool IsFilmName(const std::string& name) { return name != kPipe && IsFilm(Utf8Path(name)); }

// What cannot be done where pictures come one after another and are gone then.
void CheckPipes(const RenderOptions& options) {
  const auto refuse = [&](bool given, const char* option, const char* where) {
    const bool isFilm = IsFilmName(where == std::string("-o") ? options.output : options.input);
    if (given) {
      throw UsageError(std::string(option) +
                       (isFilm ? " needs single pictures as " : " needs a file as ") + where +
                       (isFilm ? ", not a film" : ", not a pipe (-)"));
    }
  };
  if (options.input == kPipe || IsFilmName(options.input)) {
    refuse(options.explain, "--explain", "INPUT");
    refuse(options.dryRun, "--dry-run", "INPUT");
    refuse(!options.blurChannels.empty(), "--blur-channels", "INPUT");
  }
  if (options.output == kPipe || IsFilmName(options.output)) {
    refuse(options.skipExisting, "--skip-existing", "-o");
    // A gap would give all frames behind it other numbers.
    refuse(options.keepGoing, "--keep-going", "-o");
    refuse(!options.manifest.empty(), "--manifest", "-o");
    const std::string& compression = options.coding.compression;
    refuse(options.coding.floats || (options.coding.bits != 0 && options.coding.bits != 16),
           ("--bits " + BitsWord(options.coding)).c_str(), "-o");
    refuse(!options.blurChannels.empty(), "--blur-channels", "-o");
    refuse(!compression.empty(), "--compression", "-o");
    refuse(options.coding.quality != 0, "--quality", "-o");
  }
}

// What was asked for, or is implied. The library has the engine fast alone.
Precision PrecisionOf(const RenderOptions& options) {
  const bool isModuleNamed =
      !options.module.empty() || (!options.engine.empty() && options.engine != kDefaultEngine);
  const std::string chosen =
      !options.module.empty() ? "--module " + options.module : "--engine " + options.engine;
  Precision precision = isModuleNamed || options.isRangeGiven ? Precision::k16
                        : options.centred                     ? Precision::kFloat
                                                              : Precision::kByFile;
  if (!options.precision.empty()) {
    precision = ParsePrecision("--precision", options.precision);
    if (precision != Precision::k16 && options.isRangeGiven) {
      throw UsageError("--precision " + options.precision +
                       " cannot be used with --range, which is for 16 bits");
    }
    if (precision == Precision::kFloat && isModuleNamed) {
      throw UsageError("--precision float cannot be used with " + chosen +
                       ": frames in floats do not go through a module");
    }
    if (precision == Precision::kByFile && isModuleNamed) {
      precision = Precision::k16;
    }
    if (precision == Precision::kByFile && options.centred) {
      precision = Precision::kFloat;
    }
  }
  if (options.centred && precision != Precision::kFloat) {
    throw UsageError("--centred needs floats, and " +
                     (options.precision == "16" ? std::string("--precision 16")
                      : options.isRangeGiven    ? std::string("--range")
                                                : chosen) +
                     " asks for 16 bits");
  }
  return precision;
}

// What looks and colour spaces say, too.
ShotSettings SettingsOf(const RenderOptions& options, const ReadLook& read) {
  ShotSettings settings;
  settings.layers = read.layers;
  settings.premultiplied = ParsePremultiplied("--alpha", read.pictures.alpha);
  if (!read.pictures.pixelAspect.empty()) {
    settings.pixelAspect = ParseRatio("--pixel-aspect", read.pictures.pixelAspect);
  }
  settings.reading.colours = read.colours;
  settings.reading.range = options.range;
  settings.reading.precision = PrecisionOf(options);
  settings.centred = options.centred;
  settings.grow = options.grow;
  settings.overwrite = options.overwrite;
  settings.skipExisting = options.skipExisting;
  settings.keepGoing = options.keepGoing;
  settings.carryPsf = options.carryPsf;
  return settings;
}

// Who asks for objects reads them with a program, which would wait for frames that are done.
ShotReport::Form FormOf(const RenderOptions& options) {
  return options.quiet && options.report != ShotReport::Form::kJson ? ShotReport::Form::kQuiet
                                                                    : options.report;
}

// All but files and the module.
RenderPlan PlanOf(const RenderOptions& options, const ReadLook& read) {
  RenderPlan plan;
  plan.settings = SettingsOf(options, read);
  plan.report = FormOf(options);
  plan.manifest = Utf8Path(options.manifest);
  plan.savedLook = Utf8Path(options.saveParams);
  plan.remarks = read.idle;
  plan.explain = options.explain;
  plan.dryRun = options.dryRun;
  return plan;
}

// A look's own shot binds where a time counts in it: a look that was saved from one shot serves
// others as long as it has none.
std::optional<GivenSpan> ShotOf(const Page& page, const RenderOptions& options,
                                const ReadLook& read) {
  if (const std::string& typed = options.look.At(kShot); !typed.empty()) {
    return GivenSpan{"--shot", ParseShotSpan("--shot", typed)};
  }
  const std::string text = MergeLayers(page, read.layers).At(kShot);
  if (text.empty() || read.timed.empty()) {
    return std::nullopt;
  }
  const auto layer = std::find_if(read.layers.rbegin(), read.layers.rend(),
                                  [](const LookLayer& one) { return !one.look.At(kShot).empty(); });
  const std::string origin = layer->origin + kShot;
  return GivenSpan{origin, ParseShotSpan(origin, text)};
}

// The files of the shot, and whether the look's times go with it. Of several parts the first one
// says what is to be said once.
void PlanFiles(const ReadLook& read, ShotNames names, RenderPlan* plan) {
  names.spread = read.pictures.spread;
  names.shot = read.shot;
  names.hasTimes = !read.timed.empty();
  plan->shot = PlanShot(names);
  const bool isTold = names.chunk.empty() || names.chunk.starts_with("1/");
  if (!plan->shot.gaps.empty() && isTold) {
    plan->remarks.push_back("INPUT has gaps: there are no frames " + ShowFrames(plan->shot.gaps));
  }
  const std::vector<int> outside = FramesOutside(read.timed, plan->shot.span);
  if (!outside.empty() && isTold) {
    plan->remarks.push_back("keyframes are at frames " + ShowFrames(outside) +
                            ", which are not in the shot " + ShowSpan(plan->shot.span));
  }
}

// What of the film is rendered, in its own order: it is read from its start.
void CheckFilmFrames(const Film& film, const ShotPlan& shot) {
  for (std::size_t i = 0; i < shot.files.size(); ++i) {
    const int frame = shot.files[i].frame;
    if (frame < 1 || frame > film.frames) {
      throw MissingInput(film.file.string() + ": it has the frames 1-" +
                         std::to_string(film.frames) + ", and not " + std::to_string(frame));
    }
    if (i > 0 && frame < shot.files[i - 1].frame) {
      throw UsageError("--frames must go forward in a film, and frame " + std::to_string(frame) +
                       " comes after " + std::to_string(shot.files[i - 1].frame));
    }
  }
}

void RemarkOnFilm(RenderPlan* plan) {
  const Film& film = *plan->film;
  if (film.rateVaries && !plan->filmOutput.empty()) {
    plan->remarks.push_back(film.file.string() + ": its rate varies; the output has the mean, " +
                            film.rate + " frames a second");
  }
  if (film.isInterlaced) {
    plan->remarks.push_back(film.file.string() +
                            ": it is interlaced; both fields are blurred as one picture");
  }
}

// The film that the options name, and the options with pipes in the place of films.
RenderOptions TakeFilms(const RenderOptions& options, RenderPlan* plan) {
  RenderOptions piped = options;
  if (IsFilmName(options.input)) {
    plan->film = LookIntoFilm(Utf8Path(options.input));
    plan->settings.film = options.input;
    if (plan->settings.pixelAspect.first == 0) {
      plan->settings.pixelAspect = plan->film->pixelAspect;
    }
    piped.input = kPipe;
    if (options.frames.empty()) {
      piped.frames = "1-" + std::to_string(plan->film->frames);
    }
  }
  if (IsFilmName(options.output)) {
    if (!plan->film) {
      throw UsageError("-o " + options.output +
                       " needs a film as INPUT, which says how many frames a second has");
    }
    plan->filmOutput = Utf8Path(options.output);
    plan->settings.filmOutput = options.output;
    piped.output = kPipe;
  }
  return piped;
}

// What the output's format makes of what was chosen for it. Where nothing was, the format is not
// asked for: that may open the plug-in.
void SettleCodingOf(const RenderOptions& options, RenderPlan* plan) {
  Coding coding = options.coding;
  if (coding != Coding() && options.output != kPipe) {
    for (std::string& line : SettleCoding(OutputFormatOf(Utf8Path(options.output)), &coding)) {
      plan->remarks.push_back(std::move(line));
    }
  }
  plan->settings.coding = coding;
  if (!options.blurChannels.empty() && options.output != kPipe) {
    const OutputFormat format = OutputFormatOf(Utf8Path(options.output));
    if (HoldsExtras(format)) {
      plan->settings.reading.blurChannels = options.blurChannels;
    } else {
      plan->remarks.push_back("--blur-channels has no effect: " + FormatLabel(format.name) +
                              " holds the picture's own channels alone");
    }
  }
}

}  // namespace

ReadLook ReadLookOf(const Page& page, const RenderOptions& options) {
  ReadLook read;
  read.layers = ReadLayers(page, options.look);
  read.pictures = PictureLookOf(page, read.layers);
  read.idle = IdleOptions(page, read.layers);
  const std::vector<Shape> shapes = ShapesOf(page, read.layers);
  if (std::find(shapes.begin(), shapes.end(), Shape::kImage) == shapes.end()) {
    read.pictures.spread.clear();
  }
  read.timed = TimedTexts(page, read.layers);
  read.shot = ShotOf(page, options, read);
  read.colours = ParseColours(options.colours);
  return read;
}

RenderPlan PlanRender(const RenderOptions& typed, const ReadLook& typedLook) {
  CheckPipes(typed);
  RenderPlan plan = PlanOf(typed, typedLook);
  const RenderOptions options = TakeFilms(typed, &plan);
  ReadLook read = typedLook;
  if (plan.film && !read.shot) {
    read.shot = GivenSpan{"INPUT", {1, plan.film->frames}};
  }
  PlanFiles(read,
            {options.input,
             options.output,
             "",
             options.frames,
             options.chunk,
             {{"--manifest", options.manifest, true},
              {"--save-params", options.saveParams, true},
              {"--params", options.look.file, false},
              {"--module", options.module, false}},
             {},
             false,
             options.mask},
            &plan);
  if (plan.film) {
    CheckFilmFrames(*plan.film, plan.shot);
    RemarkOnFilm(&plan);
  }
  if (plan.shot.isInPlace && options.skipExisting) {
    throw UsageError("--skip-existing cannot be used where -o is INPUT: of " + options.output +
                     " every frame exists");
  }
  SettleCodingOf(options, &plan);
  plan.module = ChooseModule(options.engine, options.module);
  return plan;
}

RenderPlan PlanSubmit(const RenderOptions& options, const ReadLook& read) {
  for (const auto& [name, file] : {std::pair{"INPUT", options.input}, {"-o", options.output}}) {
    if (IsFilmName(file)) {
      throw MustBe(name, "single pictures, which each chunk opens", file);
    }
  }
  RenderPlan plan = PlanOf(options, read);
  PlanFiles(read,
            {options.input, options.output, "", options.frames, "", {}, {}, false, options.mask},
            &plan);
  // The chunks are given the span, and to them it would be the command that is wrong.
  for (const FrameFiles& files : plan.shot.files) {
    CheckInShot(plan.shot, files.frame);
  }
  SettleCodingOf(options, &plan);
  plan.module = ChooseModule(options.engine, options.module);
  return plan;
}

void SayRemarks(const RenderPlan& plan) {
  for (const std::string& remark : plan.remarks) {
    std::cerr << "glimmerhost: " + AsLine(remark) + "\n";
  }
}

void SaveLook(const Page& page, const RenderPlan& plan) {
  if (!plan.savedLook.empty()) {
    Look used = UsedLook(page, plan.settings.layers);
    if (plan.shot.span.IsKnown()) {
      used[kShot] = ShowSpan(plan.shot.span);
    }
    SaveParameters(page, plan.savedLook, used, plan.settings.overwrite);
  }
}

}  // namespace glimmerhost
