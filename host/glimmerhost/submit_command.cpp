// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost submit: a shot in chunks, by processes on this machine or by the jobs of a farm.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>

#include "host/farm/chunk_manifests.h"
#include "host/farm/chunk_report.h"
#include "host/farm/farm_engine.h"
#include "host/farm/farm_job.h"
#include "host/farm/shell_text.h"
#include "host/glimmerhost/command.h"
#include "host/glimmerhost/render_plan.h"
#include "host/glimmerhost/typed_arguments.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/page_file.h"
#include "host/module/module_choice.h"
#include "host/pictures/picture_file.h"
#include "host/render/explain.h"
#include "host/render/shot_foresight.h"
#include "host/render/shot_report.h"
#include "host/shots/file_sequence.h"
#include "host/shots/frame_list.h"
#include "host/shots/shot_plan.h"
#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

struct SubmitOptions : RenderOptions {
  // Where chunks are rendered, and by which engine of the effect: up to one word for each.
  std::vector<std::string> engines;
  std::string jobs;                 // processes at once; empty for one
  std::vector<std::string> sbatch;  // options of sbatch
};

// What the chunks are given otherwise, or is no business of theirs.
const std::set<std::string>& KeptOptions() {
  static const std::set<std::string> kept = {
      "--jobs",          "--sbatch",  "--chunk",   "--frames",      "--manifest",
      "--skip-existing", "--explain", "--dry-run", "--save-params", "--shot"};
  return kept;
}

bool IsFarm(std::string_view engine) { return engine == "local" || engine == "slurm"; }

// What an option says that goes by two kinds of words.
struct Engines {
  std::string farm;
  std::string module;
};

UsageError GivenTwice(const std::string& word, const std::string& before) {
  return UsageError("--engine " + word + " cannot be given beside --engine " + before);
}

Engines PartEngines(const std::vector<std::string>& words) {
  Engines engines;
  for (const std::string& word : words) {
    if (!IsFarm(word) && lx::FindFootprint(word) == nullptr) {
      throw MustBe("--engine", "local or slurm, and " + EngineNames(), word);
    }
    std::string& kind = IsFarm(word) ? engines.farm : engines.module;
    if (!kind.empty()) {
      throw GivenTwice(word, kind);
    }
    kind = word;
  }
  return engines;
}

bool IsLocal(const SubmitOptions& options) { return PartEngines(options.engines).farm != "slurm"; }

std::size_t ParseCount(const std::string& option, const std::string& text, std::size_t otherwise) {
  constexpr std::size_t kMost = 1000000;
  if (text.empty()) {
    return otherwise;
  }
  std::size_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc() || end != text.data() + text.size() || count == 0 || count > kMost) {
    throw MustBe(option, "a whole number from 1 to " + std::to_string(kMost), text);
  }
  return count;
}

// What one engine has and the other has not.
void RefuseStrangers(const SubmitOptions& options) {
  if (IsLocal(options) && !options.sbatch.empty()) {
    throw UsageError("--sbatch " + options.sbatch.front() + " needs --engine slurm");
  }
  if (!IsLocal(options) && !options.jobs.empty()) {
    throw UsageError("--jobs " + options.jobs +
                     " needs --engine local: Slurm runs as many as it can");
  }
  for (const std::string& option : options.sbatch) {
    if (option.size() < 2 || option.front() != '-') {
      throw MustBe("--sbatch", "an option of sbatch in one word, such as --partition=long", option);
    }
  }
  for (const auto& [name, file] : {std::pair{"INPUT", options.input}, {"-o", options.output}}) {
    if (file == kPipe) {
      throw MustBe(name, "the name of files, which each chunk opens", file);
    }
  }
}

// In letters that are the same everywhere.
std::string PlainName(std::string name) {
  std::replace_if(
      name.begin(), name.end(),
      [](char c) {
        return !((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'));
      },
      '-');
  return name;
}

FarmJob MakeJob(const SubmitOptions& options, const std::vector<TypedArgument>& typed,
                const ShotPlan& plan) {
  FarmJob job;
  const fs::path stem = FileSequence("-o", options.output).Stem();
  job.name = "glimmerhost-" + PlainName(stem.filename().string());
  job.program = ProgramFile().string();
  job.input = options.input;
  for (const FrameFiles& files : plan.files) {
    job.frames.push_back(files.frame);
  }
  const std::size_t processes = ParseCount("--jobs", options.jobs, 1);
  constexpr std::size_t kUsual = 20;
  // Locally no more than lets every process have one.
  job.Cut(ParseCount("--chunk", options.chunk,
                     std::min(kUsual, (job.frames.size() + processes - 1) / processes)));
  const fs::path manifest = options.manifest.empty() ? Utf8Path(stem.string() + ".manifest.jsonl")
                                                     : Utf8Path(options.manifest);
  job.manifestBefore = (manifest.parent_path() / manifest.stem()).string() + ".";
  job.manifestBehind = manifest.extension().string();
  // Files may come and go until the last chunk has begun; the list is what it is now.
  job.options.push_back(FramesOption(job.frames));
  if (plan.span.IsKnown()) {
    job.options.push_back("--shot=" + ShowSpan(plan.span));
  }
  for (const TypedArgument& argument : typed) {
    const bool told = argument.option == "--progress" || argument.option == "--quiet";
    // The chunks are told of the effect's engine, and not of where they are.
    const bool kept = KeptOptions().contains(argument.option) ||
                      argument.text == "--engine=local" || argument.text == "--engine=slurm";
    if (!kept && !(told && IsLocal(options))) {
      job.options.push_back(argument.text);
    }
  }
  // A chunk that runs again finds what it has done. Where outputs are replaced it cannot know which
  // are its own, and replaces all.
  if (!options.overwrite || options.skipExisting) {
    job.options.emplace_back("--skip-existing");
  }
  return job;
}

// What every chunk would complain of, before there is one; and what stands there and is not to be
// gone on with, as no chunk would see it: to them it may be what they did before they were lost.
void CheckOutputs(const RenderPlan& plan, const FarmJob& job) {
  std::error_code error;
  const auto refuse = [&](const fs::path& file) {
    if (!plan.settings.overwrite && !plan.settings.skipExisting && fs::exists(file, error)) {
      throw Failure(file.string() +
                    ": exists already; --skip-existing goes on with it, --overwrite replaces it");
    }
  };
  for (const FrameFiles& files : plan.shot.files) {
    refuse(files.output);
    const PictureOutput output(files.output, true);
  }
  const fs::path folder = job.Manifest(1).parent_path();
  if (!folder.empty() && !fs::is_directory(folder, error)) {
    throw Failure(folder.string() + ": not found");
  }
  for (std::size_t chunk = 1; chunk <= job.chunks; ++chunk) {
    refuse(job.Manifest(chunk));
  }
}

bool NamesMemory(const std::vector<std::string>& sbatch) {
  return std::any_of(sbatch.begin(), sbatch.end(),
                     [](const std::string& option) { return option.starts_with("--mem"); });
}

// What a chunk asks for. Beside what is foreseen there are the program with its libraries, the
// plans, and what readers and writers of files hold: a quarter more, and 256 MiB.
std::uint64_t WithHeadroom(const ShotForesight& shot) {
  const std::uint64_t foreseen = shot.effectBytes + shot.pictureBytes;
  return foreseen + foreseen / 4 + (std::uint64_t{256} << 20U);
}

// Nothing where no picture is there yet. Throws what the values of the shot throw.
std::optional<ShotForesight> Foreseen(const lx::Footprint& engine, const Page& page,
                                      const ShotSettings& settings, const ShotPlan& plan) {
  try {
    const PictureHead picture = FirstHead(plan);
    const KeyframedValues values(page, settings.layers, picture.width, picture.height, plan.span);
    return ForeseeShot(engine, values, plan, picture, settings);
  } catch (const MissingInput&) {
    return std::nullopt;
  }
}

SlurmSettings ForSlurm(const SubmitOptions& options, const ShotPlan& plan,
                       const std::optional<ShotForesight>& foreseen) {
  SlurmSettings slurm;
  if (foreseen) {
    slurm.memory = WithHeadroom(*foreseen);
  } else if (!NamesMemory(options.sbatch)) {
    throw MissingInput(plan.files.front().input.string() +
                       ": not found, so the memory of a chunk is not known; --sbatch --mem=SIZE "
                       "says it");
  }
  if (!options.threads.empty()) {
    slurm.processors = std::to_string(ParseCount("--threads", options.threads, 1));
  }
  slurm.logBefore = FileSequence("-o", options.output).Stem().string() + ".slurm-";
  slurm.options = options.sbatch;
  return slurm;
}

void ShowChunks(const FarmJob& job, std::ostream& out) {
  for (std::size_t chunk = 1; chunk <= job.chunks; ++chunk) {
    const std::vector<int> frames = job.Frames(chunk);
    out << "# chunk " << chunk << " of " << job.chunks << ": frames " << ShowFrames(frames)
        << ", manifest " << ShellWord(job.Manifest(chunk).string()) << '\n';
  }
}

// The engine of Slurm or of this machine.
//   listener  must outlive it
std::unique_ptr<FarmEngine> MakeEngine(const SubmitOptions& options, const RenderPlan& plan,
                                       const std::optional<ShotForesight>& foreseen,
                                       ChunkListener* listener) {
  return IsLocal(options) ? MakeLocalEngine(ParseCount("--jobs", options.jobs, 1), listener)
                          : MakeSlurmEngine(ForSlurm(options, plan.shot, foreseen));
}

void WarnOfTooLarge(const lx::Footprint& engine, const std::optional<ShotForesight>& foreseen) {
  if (foreseen && foreseen->byGrid.contains(kTooLarge)) {
    std::cerr << "glimmerhost: frames " + ShowFrames(foreseen->byGrid.at(kTooLarge)) +
                     " are too large: the grid ends at " + std::to_string(engine.largestSide) +
                     ", and they will fail\n";
  }
}

// A process that finds too little memory fails its frames.
void WarnOfMemory(const SubmitOptions& options, const FarmJob& job,
                  const std::optional<ShotForesight>& foreseen) {
  const std::uint64_t available = AvailableMemory();
  if (!IsLocal(options) || !foreseen || available == 0) {
    return;
  }
  const std::uint64_t each = WithHeadroom(*foreseen);
  const std::uint64_t processes = std::min(ParseCount("--jobs", options.jobs, 1), job.chunks);
  if (processes > 1 && processes * each > available) {
    constexpr std::uint64_t kMebibyte = 1024 * 1024;
    std::cerr << "glimmerhost: --jobs " + std::to_string(processes) + " needs about " +
                     std::to_string(processes * each / kMebibyte) + " MiB, and this machine has " +
                     std::to_string(available / kMebibyte) + " MiB left: room for " +
                     std::to_string(std::max<std::uint64_t>(available / each, 1)) + "\n";
  }
}

// Cuts the shot, and renders the chunks or hands them over. When it throws, nothing has been handed
// over.
//   typed  all that the command was given: what it is not alone in knowing goes to the chunks
int Submit(const Page& page, const SubmitOptions& options, const RenderPlan& plan,
           const std::vector<TypedArgument>& typed, std::ostream& out) {
  const FarmJob job = MakeJob(options, typed, plan.shot);
  CheckOutputs(plan, job);
  const lx::Footprint& effect = *plan.module.engine;
  const std::optional<ShotForesight> foreseen = Foreseen(effect, page, plan.settings, plan.shot);
  WarnOfTooLarge(effect, foreseen);
  WarnOfMemory(options, job, foreseen);
  // On this machine the first chunk says it.
  if (plan.dryRun || !IsLocal(options)) {
    SayRemarks(plan);
  }
  ShotReport report(plan.dryRun || !IsLocal(options) ? ShotReport::Form::kQuiet : plan.report,
                    plan.shot.files.size(), plan.shot.isShot);
  ChunkReport listener(job, &report, plan.settings.keepGoing);
  const std::unique_ptr<FarmEngine> engine = MakeEngine(options, plan, foreseen, &listener);
  if (plan.dryRun) {
    ShowChunks(job, out);
    engine->Show(job, out);
    return kExitDone;
  }
  SaveLook(page, plan);
  if (plan.settings.skipExisting) {
    CarryManifests(job);
  }
  // Numbers of jobs are no progress.
  std::ostream nowhere(nullptr);
  return engine->Run(job, options.quiet && IsLocal(options) ? nowhere : out);
}

std::vector<std::string> EngineChoices() {
  std::vector<std::string> choices = {"local"};
  if (kHasSlurm) {
    choices.emplace_back("slurm");
  }
  for (const std::string& engine : EngineList()) {
    choices.push_back(engine);
  }
  return choices;
}

class SubmitCommand final : public Command {
 public:
  void AddOptions(OptionSet* options) override {
    parser_ = &options->Parser();
    page_ = LoadPage();
    AddRenderOptions(options, page_, &options_);
    options->Value("--chunk", &options_.chunk,
                   {kShotGroup, "COUNT",
                    "The most frames of a chunk. Chunks are consecutive frames of the list, as "
                    "even as can be (default 20; locally at most the frames divided by --jobs)"});
    const std::string farm = "Farm";
    options->Values(
        "--engine", &options_.engines,
        {farm, "NAME",
         std::string("local (default): processes on this machine") +
             (kHasSlurm ? "; slurm: an array of Slurm jobs, and one for the check" : "") +
             ". It may be given once more, with what the effect transforms by: " + EngineNames() +
             " (default " + kDefaultEngine + ")",
         EngineChoices()});
    options->Value("--jobs", &options_.jobs,
                   {farm, "COUNT",
                    "local: processes at once (default 1, as one frame takes all processors). With "
                    "more, --threads says how many processors each of them has"});
    options->Values("--sbatch", &options_.sbatch,
                    {farm,
                     "OPTION",
                     "slurm: an option for sbatch in one word (--partition=long), over those "
                     "that come from the shot. May be given more than once",
                     {},
                     kHasSlurm});
  }

  std::string Notes() const override {
    return "Each chunk is a glimmerhost render --chunk K/N --skip-existing. Its manifest\n"
           "lies beside the output, or is called after --manifest:\n"
           "out.manifest.0003-of-0012.jsonl. In the end glimmerhost check compares the\n"
           "frames with all manifests. --dry-run prints what would be run.\n";
  }

  int Run(std::ostream& out) override {
    RefuseStrangers(options_);
    options_.engine = PartEngines(options_.engines).module;
    const RenderPlan plan = PlanSubmit(options_, ReadLookOf(page_, options_));
    if (plan.explain) {
      SayRemarks(plan);
      Explain(*plan.module.engine, page_, plan.settings, plan.shot, out);
      return kExitDone;
    }
    return Submit(page_, options_, plan, TypedArguments(*parser_), out);
  }

 private:
  const CLI::App* parser_ = nullptr;
  Page page_;
  SubmitOptions options_;
};

}  // namespace

std::unique_ptr<Command> MakeSubmitCommand() { return std::make_unique<SubmitCommand>(); }

}  // namespace glimmerhost
