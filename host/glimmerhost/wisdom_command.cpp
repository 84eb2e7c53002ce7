// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost wisdom: where plans of the transforms are kept, and measuring them ahead.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <iomanip>
#include <map>
#include <ostream>
#include <system_error>
#include <vector>

#include "baselib/utils/directories.h"
#include "host/glimmerhost/command.h"
#include "host/glimmerhost/processors.h"
#include "host/glimmerhost/run_options.h"
#include "host/looks/keys.h"
#include "host/looks/page_file.h"
#include "host/module/effect_module.h"
#include "host/module/frame_renderer.h"
#include "host/pictures/picture.h"
#include "host/support/failure.h"
#include "host/support/progress.h"
#include "host/support/system.h"
#include "host/support/temporary_file.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// The module's name for it, which its users rely on.
constexpr const char* kWisdomFile = "fftw3_wisdom_lx.dat";

// Of the grids that pictures from 512 pixels to 4K come to.
constexpr int kGrids[] = {512, 1024, 2048, 4096};

std::vector<std::string> GridNames() {
  std::vector<std::string> names;
  for (const int side : kGrids) {
    names.push_back(std::to_string(side));
  }
  return names;
}

struct WisdomOptions {
  bool measure = false;
  std::vector<std::string> grids;  // sides, of which none stands for all
  std::string threads;             // a count; empty for every processor. A plan is for so many.
  bool quiet = false;
  std::string module;  // a module file; empty for the one beside the program
};

std::vector<int> ParseGrids(const WisdomOptions& options) {
  if (options.grids.empty()) {
    return {std::begin(kGrids), std::end(kGrids)};
  }
  if (!options.measure) {
    throw UsageError("--grid says what to measure: it needs --measure");
  }
  std::vector<int> grids;
  for (const std::string& text : options.grids) {
    const auto* grid = std::find_if(std::begin(kGrids), std::end(kGrids),
                                    [&](int side) { return std::to_string(side) == text; });
    if (grid == std::end(kGrids)) {
      throw MustBe("--grid", JoinOr(GridNames()), text);
    }
    grids.push_back(*grid);
  }
  return grids;
}

void MakeDirectories(const fs::path& home) {
  if (lx::make_standard_directories() == 0) {
    throw Failure("the directories in " + home.string() + " could not be made; " + kHomeAdvice);
  }
}

// Measuring takes long, so what would come of it is known before.
void ExpectWritable(const fs::path& settings) {
  try {
    TemporaryFile(settings / "glimmerhost").Write("");
  } catch (const Failure&) {
    throw Failure(settings.string() + " cannot be written, so no plan could be kept there; " +
                  kHomeAdvice);
  }
}

void SayFile(const fs::path& file, std::ostream& out) {
  out << "Wisdom file         " << file.string() << ", ";
  std::error_code error;
  const std::uintmax_t bytes = fs::file_size(file, error);
  if (error) {
    out << "not there yet\n";
  } else {
    out << bytes << " bytes\n";
  }
}

// A frame that needs a grid of that side. Its height does not count, so it is a low one.
void RenderOnGrid(const EffectModule& module, const Page& page, int grid) {
  Picture frame;
  frame.width = grid / 4 * 3;
  frame.height = 16;
  frame.samples.assign(frame.PixelCount() * 4, 0);
  std::map<std::string, Value> values = page.Defaults();
  // Four pixels: the grid is the frame's own width with a little more.
  values[kRadiusXKey] = 8.0 / frame.width;
  values[kRadiusYKey] = 8.0 / frame.width;
  RenderPicture(module, values, {}, {1, 1}, &frame);
}

void Measure(const WisdomOptions& options, const std::vector<int>& grids, std::ostream& out) {
  using Clock = std::chrono::steady_clock;
  NarrowProcessors(options.threads);
  const Page page = LoadPage();
  SetVariable("LX_USE_FFTW_WISDOM", "1");
  Progress progress(!options.quiet);
  // The others have no plans, whatever the default is.
  const EffectModule module(ChooseModule(options.module.empty() ? "exact" : "", options.module));
  for (const int grid : grids) {
    const std::string size = std::to_string(grid) + " x " + std::to_string(grid);
    progress.Show("Measuring plans for a grid of " + size + ", up to " +
                  std::to_string(grids.back()));
    const Clock::time_point start = Clock::now();
    RenderOnGrid(module, page, grid);
    const std::chrono::duration<double> taken = Clock::now() - start;
    progress.Clear();
    out << "Measured            " << size << ", " << std::fixed << std::setprecision(1)
        << taken.count() << " s\n"
        << std::flush;
  }
}

void RunWisdom(const WisdomOptions& options, std::ostream& out) {
  const fs::path home = lx::get_standard_directory(lx::kHomeDirectory);
  const fs::path settings = lx::get_standard_directory(lx::kSettingsDirectory);
  const fs::path file = settings / kWisdomFile;
  const std::vector<int> grids = ParseGrids(options);
  out << "Settings directory  " << settings.string() << '\n';
  MakeDirectories(home);
  if (options.measure) {
    ExpectWritable(settings);
    Measure(options, grids, out);
  }
  SayFile(file, out);
}

class WisdomCommand final : public Command {
 public:
  void AddOptions(OptionSet* options) override {
    options->Switch("--measure", &options_.measure, kPlansGroup,
                    "Measure the plans of the grids from 512 to 4096 now; takes some seconds");
    options->Values("--grid", &options_.grids,
                    {kPlansGroup, "SIDE",
                     "Measure only grids of that side: " + JoinOr(GridNames()) +
                         ". May be given more than once",
                     GridNames()});
    AddThreads(options, &options_.threads);
    options->Switch("--quiet", &options_.quiet, kRunningGroup, "No progress line");
    AddModule(options, &options_.module);
  }

  std::string Notes() const override {
    return "The engine exact measures its transforms, and keeps what it learns, if the\n"
           "environment has LX_USE_FFTW_WISDOM, whatever its value. Without it no file is\n"
           "touched. This command makes the directories that the files lie in.\n";
  }

  int Run(std::ostream& out) override {
    RunWisdom(options_, out);
    return kExitDone;
  }

 private:
  static constexpr const char* kPlansGroup = "Plans";

  WisdomOptions options_;
};

}  // namespace

std::unique_ptr<Command> MakeWisdomCommand() { return std::make_unique<WisdomCommand>(); }

}  // namespace glimmerhost
