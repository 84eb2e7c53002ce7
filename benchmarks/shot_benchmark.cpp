// SPDX-License-Identifier: BSD-3-Clause
// What a shot takes beside the effect's own work, and what a program's start takes.
//
//   build/release/bin/shot_benchmark [FRAMES]
//
// Renders that many frames (20) of 1920x1080, TIFF with 16 bits in and out, with the program that
// stands beside this one, and compares the time from its start to its end with the sum of the
// times that the effect worked, as the program's own report has them. Frames are plain or deflated,
// and what is rendered is coded as they are. Then one frame of 8x8, whose time is all start: the
// median of 15. Prints a table in Markdown.
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/child_program.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// Lights on a dim ground with grain, which no two frames have alike.
void WriteFrame(const fs::path& file, int width, int height, const char* compression,
                std::uint32_t seed) {
  std::vector<std::uint16_t> samples;
  std::uint32_t state = seed * 2654435761U + 1;
  const auto next = [&state] {
    state = state * 1664525U + 1013904223U;
    return state >> 16U;
  };
  for (std::size_t i = 0; i < static_cast<std::size_t>(width) * height; ++i) {
    const std::uint32_t base = next() % 4096 == 0 ? 60000 : 2000;
    for (int c = 0; c < 3; ++c) {
      samples.push_back(static_cast<std::uint16_t>(base + next() % 512));
    }
  }
  OIIO::ImageSpec spec(width, height, 3, OIIO::TypeDesc::UINT16);
  spec.attribute("compression", compression);
  const auto output = OIIO::ImageOutput::create(file.string());
  if (!output || !output->open(file.string(), spec) ||
      !output->write_image(OIIO::TypeDesc::UINT16, samples.data()) || !output->close()) {
    std::fprintf(stderr, "%s cannot be written\n", file.c_str());
    std::exit(1);
  }
}

// From start to end, in seconds.
double Render(const std::vector<std::string>& arguments, std::string* text) {
  const Clock::time_point start = Clock::now();
  const lx_test::Outcome outcome = lx_test::RunChild(PROGRAM, arguments);
  const std::chrono::duration<double> taken = Clock::now() - start;
  if (outcome.code != 0) {
    std::fprintf(stderr, "%s", outcome.text.c_str());
    std::exit(1);
  }
  *text = outcome.text;
  return taken.count();
}

double EffectSeconds(const std::string& report) {
  double sum = 0.0;
  std::istringstream lines(report);
  for (std::string line; std::getline(lines, line);) {
    sum += nlohmann::json::parse(line).value("seconds", 0.0);
  }
  return sum;
}

}  // namespace

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::atoi(argv[1]) : 20;
  const lx_test::ScratchFolder folder;
  std::printf("| %d frames of 1920x1080 | seconds | effect's | ratio |\n|---|---|---|---|\n",
              frames);
  const struct {
    const char* name;
    std::vector<std::string> look;
  } looks[] = {{"still aperture", {"--radius", "12px", "--emphasis", "60"}},
               {"new aperture every frame",
                {"--shape", "polygon", "--radius", "first=12px; last=20px", "--emphasis", "60"}}};
  for (const char* compression : {"none", "zip"}) {
    for (int frame = 1; frame <= frames; ++frame) {
      WriteFrame(folder / ("in." + std::to_string(frame) + ".tif"), 1920, 1080, compression,
                 static_cast<std::uint32_t>(frame));
    }
    for (const auto& look : looks) {
      std::vector<std::string> arguments{"render",      (folder / "in.@.tif").string(),
                                         "-o",          (folder / "out.@.tif").string(),
                                         "--overwrite", "--progress=json"};
      arguments.insert(arguments.end(), look.look.begin(), look.look.end());
      std::string report;
      const double taken = Render(arguments, &report);
      const double effect = EffectSeconds(report);
      std::printf("| %s, compression %s | %.2f | %.2f | %.3f |\n", look.name, compression, taken,
                  effect, taken / effect);
    }
  }
  WriteFrame(folder / "small.tif", 8, 8, "none", 1);
  std::vector<double> starts;
  for (int i = 0; i < 15; ++i) {
    std::string report;
    const double taken =
        Render({"render", (folder / "small.tif").string(), "-o", (folder / "out.tif").string(),
                "--overwrite", "--radius", "1px", "--progress=json"},
               &report);
    starts.push_back(taken - EffectSeconds(report));
  }
  std::nth_element(starts.begin(), starts.begin() + 7, starts.end());
  std::printf("\nOne frame of 8x8 without the effect's work: %.0f ms\n", starts[7] * 1000.0);
  return 0;
}
