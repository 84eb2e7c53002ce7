#include "host/glimmerhost/wisdom_command.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iomanip>
#include <ostream>
#include <system_error>
#include <vector>

#include "baselib/platform/platform.h"
#include "baselib/utils/directories.h"
#include "host/glimmerhost/processors.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/page_file.h"
#include "host/looks/render_settings.h"
#include "host/module/effect_module.h"
#include "host/module/frame_renderer.h"
#include "host/pictures/picture.h"
#include "host/support/failure.h"
#include "host/support/progress.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// The module's name for it, which its users rely on.
constexpr const char* kWisdomFile = "fftw3_wisdom_lx.dat";

// Of the grids that pictures from 512 pixels to 4K come to.
constexpr int kGrids[] = {512, 1024, 2048, 4096};

std::vector<int> ParseGrids(const WisdomOptions& options) {
  if (options.grids.empty()) {
    return {std::begin(kGrids), std::end(kGrids)};
  }
  if (!options.measure) {
    throw UsageError("--grid says what to measure, and needs --measure");
  }
  std::vector<int> grids;
  for (const std::string& text : options.grids) {
    const auto* grid = std::find_if(std::begin(kGrids), std::end(kGrids),
                                    [&](int side) { return std::to_string(side) == text; });
    if (grid == std::end(kGrids)) {
      throw UsageError("--grid " + text + ": allowed is 512, 1024, 2048 or 4096");
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
  const lx::Platform& platform = lx::GetPlatform();
  const std::string probe =
      (settings / ("glimmerhost." + std::to_string(platform.processId()) + ".part")).string();
  std::FILE* file = platform.openFile(probe.c_str(), "w+");
  if (file == nullptr) {
    throw Failure(settings.string() + " cannot be written, so no plan could be kept there; " +
                  kHomeAdvice);
  }
  platform.closeFile(file);
  platform.removeFile(probe.c_str());
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
  TypedValues typed;
  typed.radius = "4px";
  RenderPicture(module, MakeStoreValues(page, typed, frame.width, frame.height), {}, {1, 1},
                &frame);
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

}  // namespace

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

}  // namespace glimmerhost
