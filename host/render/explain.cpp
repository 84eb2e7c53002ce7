// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/explain.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "host/looks/foresight.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/keys.h"
#include "host/module/frame_renderer.h"
#include "host/render/shot_foresight.h"
#include "host/shots/frame_list.h"
#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

std::string Mebibytes(std::uint64_t bytes) {
  constexpr std::uint64_t kMebibyte = 1024 * 1024;
  return std::to_string((bytes + kMebibyte - 1) / kMebibyte) + " MiB";
}

std::string Sides(const lx::GridSides& grid) {
  return std::to_string(grid.width) + " x " + std::to_string(grid.height);
}

std::string Existence(const fs::path& file) {
  std::error_code error;
  return fs::exists(file, error) ? "" : " (missing)";
}

// What decides whether a new aperture is built, as FrameRenderer takes it.
int CountApertures(const KeyframedValues& values, const ShotPlan& plan,
                   const ShotSettings& settings) {
  int count = 0;
  std::map<std::string, Value> before;
  for (const FrameFiles& files : plan.files) {
    std::map<std::string, Value> now = ApertureValues(values.At(files.frame));
    const bool isNew = settings.carryPsf ? count == 0 || now != before
                                         : ShapeOf(now) == Shape::kImage || now != before;
    count += isNew ? 1 : 0;
    before = std::move(now);
  }
  return count;
}

}  // namespace

void ListFiles(const ShotPlan& plan, std::ostream& out) {
  std::error_code error;
  for (const FrameFiles& files : plan.files) {
    out << files.frame << "  " << files.input.string() << Existence(files.input);
    if (!files.spread.empty()) {
      out << "  " << files.spread.string() << Existence(files.spread);
    }
    if (!files.mask.empty()) {
      out << "  " << files.mask.string() << Existence(files.mask);
    }
    out << "  ->  " << files.output.string()
        << (fs::exists(files.output, error) ? " (there already)" : "") << '\n';
  }
}

void Explain(const lx::Footprint& engine, const Page& page, const ShotSettings& settings,
             const ShotPlan& plan, std::ostream& out) {
  const PictureHead picture = FirstHead(plan);
  const KeyframedValues values(page, settings.layers, picture.width, picture.height, plan.span);
  const ShotForesight foresight = ForeseeShot(engine, values, plan, picture, settings);
  std::vector<int> frames;
  for (const FrameFiles& files : plan.files) {
    frames.push_back(files.frame);
  }
  out << "Frames              " << ShowFrames(frames) << ", " << frames.size() << " of "
      << picture.width << " x " << picture.height << '\n';
  if (plan.span.IsKnown()) {
    out << "Shot                " << ShowSpan(plan.span) << '\n';
  }
  if (foresight.growth > 0) {
    out << "Canvas              grows by " << foresight.growth << " pixels on each side, to "
        << picture.width + 2 * foresight.growth << " x " << picture.height + 2 * foresight.growth
        << '\n';
  }
  const bool isFloat = settings.reading.KeepsFloats(picture.floats);
  out << "Precision           "
      << (isFloat ? "float, through the library" : "16 bits, through the module")
      << (isFloat && settings.centred ? ", apertures centred" : "") << '\n';
  out << "Engine              " << engine.name << ": " << engine.description << '\n';
  for (const auto& [grid, of] : foresight.byGrid) {
    if (grid == kTooLarge) {
      out << "Too large           frames " << ShowFrames(of) << ": the grid ends at "
          << engine.largestSide << ", and they will fail\n";
      continue;
    }
    out << "Grid                " << Sides(grid);
    if (foresight.byGrid.size() > 1) {
      out << " for frames " << ShowFrames(of);
    }
    out << '\n';
  }
  out << "Memory              " << Mebibytes(foresight.effectBytes) << " for the effect, "
      << Mebibytes(foresight.pictureBytes) << " for pictures";
  if (const std::uint64_t available = AvailableMemory(); available != 0) {
    out << ", of " << Mebibytes(available) << " that this machine has left";
  }
  out << '\n';
  const int apertures = CountApertures(values, plan, settings);
  out << "Apertures           built "
      << (apertures == 1 ? "once" : std::to_string(apertures) + " times") << " for "
      << Counted(frames.size(), "frame") << '\n';
  out << "Largest radius      "
      << Shortest(static_cast<double>(std::int64_t(foresight.radius * 10.0 + 0.5)) / 10.0)
      << " pixels\n";
  for (const auto& [grid, of] : foresight.byGrid) {
    // A larger radius would grow the canvas, too.
    if (grid == kTooLarge || foresight.growth > 0) {
      continue;
    }
    const GridStep step = NextGrid(engine, grid, picture.width, picture.height);
    if (step.next != kTooLarge) {
      out << "Next step           above a radius of " << step.radius << " pixels a grid of "
          << Sides(step.next) << '\n';
    }
  }
}

}  // namespace glimmerhost
