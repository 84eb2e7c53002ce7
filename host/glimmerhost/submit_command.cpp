#include "host/glimmerhost/submit_command.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>

#include "host/farm/chunk_report.h"
#include "host/farm/farm_engine.h"
#include "host/farm/farm_job.h"
#include "host/looks/look_layers.h"
#include "host/looks/page_file.h"
#include "host/looks/parameter_file.h"
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

// What the chunks are given otherwise, or is no business of theirs.
const std::set<std::string>& KeptOptions() {
  static const std::set<std::string> kept = {"--jobs",    "--sbatch",   "--chunk",
                                             "--frames",  "--manifest", "--skip-existing",
                                             "--explain", "--dry-run",  "--save-params"};
  return kept;
}

bool IsFarm(std::string_view engine) { return engine == "local" || engine == "slurm"; }

// What an option says that goes by two kinds of words.
struct Engines {
  std::string farm;
  std::string module;
};
UsageError GivenTwice(const std::string& word, const std::string& before) {
  return UsageError("--engine " + word + ": given is --engine " + before + " already");
}

Engines PartEngines(const std::vector<std::string>& words) {
  Engines engines;
  for (const std::string& word : words) {
    if (!IsFarm(word) && lx::FindFootprint(word) == nullptr) {
      throw UsageError("--engine " + word + ": allowed is local or slurm, and " + EngineNames());
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
    throw UsageError(option + " " + text + ": allowed is a whole number from 1 to " +
                     std::to_string(kMost));
  }
  return count;
}

// What one engine has and the other has not.
void RefuseStrangers(const SubmitOptions& options) {
  if (IsLocal(options) && !options.sbatch.empty()) {
    throw UsageError("--sbatch " + options.sbatch.front() + ": allowed with --engine slurm alone");
  }
  if (!IsLocal(options) && !options.jobs.empty()) {
    throw UsageError("--jobs " + options.jobs +
                     ": allowed with --engine local alone; Slurm runs as many as it can");
  }
  for (const std::string& option : options.sbatch) {
    if (option.size() < 2 || option.front() != '-') {
      throw UsageError("--sbatch " + option +
                       ": allowed is an option of sbatch in one word, such as --partition=long");
    }
  }
  for (const auto& [name, file] : {std::pair{"INPUT ", options.input}, {"-o ", options.output}}) {
    if (file == kPipe) {
      throw UsageError(name + file + ": allowed are the names of files, which each chunk opens");
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
void CheckOutputs(const SubmitOptions& options, const ShotPlan& plan, const FarmJob& job) {
  std::error_code error;
  const auto refuse = [&](const fs::path& file) {
    if (!options.overwrite && !options.skipExisting && fs::exists(file, error)) {
      throw Failure(file.string() +
                    ": it exists already; --skip-existing goes on with it, --overwrite replaces "
                    "it");
    }
  };
  for (const FrameFiles& files : plan.files) {
    refuse(files.output);
    const PictureOutput output(files.output, true);
  }
  const fs::path folder = job.Manifest(1).parent_path();
  if (!folder.empty() && !fs::is_directory(folder, error)) {
    throw Failure(folder.string() + ": there is no such folder");
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
    const Picture picture = FirstPicture(plan);
    const KeyframedValues values(page, settings.layers, picture.width, picture.height,
                                 {plan.lowest, plan.highest});
    return ForeseeShot(engine, values, plan, picture);
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
                       ": there is no such file, and so the memory of a chunk is not known; "
                       "--sbatch --mem=SIZE says it");
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
        << ", manifest " << job.Manifest(chunk).string() << '\n';
  }
}

}  // namespace

int RunSubmit(const SubmitOptions& given, const std::vector<TypedArgument>& typed,
              std::ostream& out) {
  RefuseStrangers(given);
  SubmitOptions options = given;
  options.engine = PartEngines(options.engines).module;
  const ShotSettings settings = ParseSettings(options);
  const ShotReport::Form form = ShotReport::ParseForm(options.progress, options.quiet);
  const ShotPlan plan =
      PlanShot({options.input, options.output, options.spread, options.frames, ""});
  const Page page = LoadPage();
  const ModuleChoice choice = ChooseModule(options.engine, options.module);
  if (options.explain) {
    Explain(*choice.engine, page, settings, plan, out);
    return kExitDone;
  }
  const FarmJob job = MakeJob(options, typed, plan);
  CheckOutputs(options, plan, job);
  const std::optional<ShotForesight> foreseen = Foreseen(*choice.engine, page, settings, plan);
  if (foreseen && foreseen->byGrid.contains(kTooLarge)) {
    std::cerr << "glimmerhost: frames " + ShowFrames(foreseen->byGrid.at(kTooLarge)) +
                     " are too large: the grid ends at " +
                     std::to_string(choice.engine->largestSide) + ", and they will fail\n";
  }
  ShotReport report(options.dryRun || !IsLocal(options) ? ShotReport::Form::kQuiet : form,
                    plan.files.size(), plan.isShot);
  ChunkReport listener(job, &report, options.keepGoing);
  const std::unique_ptr<FarmEngine> engine =
      IsLocal(options) ? MakeLocalEngine(ParseCount("--jobs", options.jobs, 1), &listener)
                       : MakeSlurmEngine(ForSlurm(options, plan, foreseen));
  if (options.dryRun) {
    ShowChunks(job, out);
    engine->Show(job, out);
    return kExitDone;
  }
  if (!options.saveParams.empty()) {
    SaveParameters(Utf8Path(options.saveParams), UsedLook(page, settings.layers),
                   options.overwrite);
  }
  // Numbers of jobs are no progress.
  std::ostream nowhere(nullptr);
  return engine->Run(job, options.quiet && IsLocal(options) ? nowhere : out);
}

}  // namespace glimmerhost
