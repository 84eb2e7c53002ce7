// SPDX-License-Identifier: BSD-3-Clause
// Frames whose outputs are kept in golden/, so that every system can be held to the same ones.
//
// A file holds width and height and then the samples row by row, all as 16 bits with the low byte
// first. With GOLDEN_FRAMES_WRITE in the environment the files are written in the place of being
// compared with; look at what changed before it is committed.
//
// Everything but the transforms gives the same bits on every system. The transform library's own
// result depends on how it was built and on the processor that it chooses its code for, and two
// builds agree to one step. A step of the effect's 16-bit samples is at most one in the upper 15
// bits of a host's: more do not pass the border.
//
// The frames are the exact engine's. Other engines are held to the same files, by what they may
// differ from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "tests/border/connections.h"
#include "tests/border/loaded_module.h"
#include "tests/border/module_path.h"
#include "tests/border/one_processor.h"

namespace {

using lx_test::Connections;
using lx_test::FakeHost;
using lx_test::LoadedModule;
using Samples = std::vector<std::uint16_t>;

struct Golden {
  std::string name;
  int width;
  int height;
  std::map<std::string, double> params;
};

void PrintTo(const Golden& golden, std::ostream* out) { *out << golden.name; }

std::vector<Golden> Goldens() {
  return {
      {"Circle", 96, 64, {{"PRM_Shape", 0}, {"PRM_RadiusX", 0.125}}},
      {"RotatedEllipse",
       61,
       47,
       {{"PRM_Shape", 1}, {"PRM_RadiusX", 0.25}, {"PRM_RadiusY", 0.125}, {"PRM_Rotation", 30}}},
      {"PolygonWithEmphasis",
       96,
       64,
       {{"PRM_Shape", 2},
        {"PRM_Match", 1},
        {"PRM_RadiusX", 0.1875},
        {"PRM_RadiusY", 0.1875},
        {"PRM_Sides", 5},
        {"PRM_Rotation", 18},
        {"PRM_Emphasis", 50}}},
      {"PolygonWithEmphasisOfAlpha",
       53,
       39,
       {{"PRM_Shape", 2},
        {"PRM_RadiusX", 0.25},
        {"PRM_RadiusY", 0.125},
        {"PRM_Sides", 7},
        {"PRM_Rotation", 0},
        {"PRM_Emphasis", 20},
        {"PRM_EmphAlpha", 1}}},
      {"ImageOfTheFrameItself",
       64,
       48,
       {{"PRM_Shape", 3},
        {"PRM_Center_X", 0.5},
        {"PRM_Center_Y", 0.5},
        {"PRM_RadiusPSF1", 0.125},
        {"PRM_RadiusPSF2", 0.25},
        {"PRM_Emphasis", 30}}},
  };
}

// A dim gradient with lights of all colours on it, and an alpha that goes from none to full.
// Integers alone, so that it is the same everywhere.
void FillPicture(int width, int height, Samples* samples) {
  std::uint16_t* sample = samples->data();
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x, sample += 4) {
      const unsigned hash =
          (static_cast<unsigned>(x) * 73856093U ^ static_cast<unsigned>(y) * 19349663U) >> 7U;
      const bool isLight = hash % 37 == 0;
      for (unsigned c = 0; c < 3; ++c) {
        const unsigned dim = static_cast<unsigned>(x * (static_cast<int>(c) + 1) + y * 2) * 40U;
        const unsigned light = 20000U + (hash * (c * 2 + 3)) % 45536U;
        sample[c] = static_cast<std::uint16_t>(isLight ? light : dim + hash % 256U);
      }
      sample[3] = static_cast<std::uint16_t>(x * 65535 / (width - 1));
    }
  }
}

Samples Render(const Golden& golden) {
  FakeHost host;
  const LoadedModule module(&host);
  const lx_test::OneProcessor one;
  Connections connections(&host.log, golden.width, golden.height);
  connections.params->numbers = golden.params;
  FillPicture(golden.width, golden.height, &connections.In());
  const auto render = lx_test::MakeRender(host);
  connections.Connect(render);
  render->renderFrame(1, 0, 0);
  return connections.Out();
}

std::string FileOf(const Golden& golden) {
  return std::string(GOLDEN_FRAMES) + "/" + golden.name + ".frame";
}

void Write(const Golden& golden, const Samples& samples) {
  std::ofstream file(FileOf(golden), std::ios::binary);
  const auto put = [&file](unsigned word) {
    file.put(static_cast<char>(word & 0xFFU)).put(static_cast<char>(word >> 8U));
  };
  put(static_cast<unsigned>(golden.width));
  put(static_cast<unsigned>(golden.height));
  std::for_each(samples.begin(), samples.end(), put);
  ASSERT_TRUE(file.flush()) << FileOf(golden);
}

// Width and height, then the samples.
Samples Read(const Golden& golden) {
  std::ifstream file(FileOf(golden), std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  Samples words;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i]);
    const auto high = static_cast<unsigned char>(bytes[i + 1]);
    words.push_back(static_cast<std::uint16_t>(low | high << 8));
  }
  return words;
}

// How far a sample may be from the kept one, in the upper 15 bits. Single precision rounds some
// 1e-7 of full scale away, which the inverse curve multiplies by the square of the emphasis where
// it is dark: five of the effect's 16-bit steps were seen at 50, two at 30.
int StepsAllowed(const Golden& golden) {
  const auto emphasis = golden.params.find("PRM_Emphasis");
  const bool isStrong = emphasis != golden.params.end() && emphasis->second > 30;
  return lx_test::ModuleEngine() == "single" && isStrong ? 3 : 1;
}

class GoldenFrame : public testing::TestWithParam<Golden> {};

TEST_P(GoldenFrame, IsKeptToTheBitOrToOneStep) {
  const Golden& golden = GetParam();
  const Samples got = Render(golden);
  if (std::getenv("GOLDEN_FRAMES_WRITE") != nullptr && lx_test::ModuleEngine() == "exact") {
    Write(golden, got);
    GTEST_SKIP() << "written";
  }
  Samples expected = Read(golden);
  ASSERT_EQ(got.size() + 2, expected.size()) << FileOf(golden);
  EXPECT_EQ(golden.width, expected[0]);
  EXPECT_EQ(golden.height, expected[1]);
  expected.erase(expected.begin(), expected.begin() + 2);

  int different = 0;
  for (std::size_t i = 0; i < got.size(); ++i) {
    different += got[i] != expected[i] ? 1 : 0;
    const int steps = std::abs((got[i] >> 1) - (expected[i] >> 1));
    ASSERT_LE(steps, StepsAllowed(golden))
        << "sample " << i % 4 << " of pixel " << i / 4 % golden.width << "," << i / 4 / golden.width
        << ": expected " << expected[i] << ", got " << got[i];
  }
  const std::string agreement =
      different == 0 ? "all bits equal" : std::to_string(different) + " samples a step away";
  std::cout << golden.name << ": " << agreement << '\n';
  RecordProperty("agreement", agreement);
}

INSTANTIATE_TEST_SUITE_P(Frames, GoldenFrame, testing::ValuesIn(Goldens()),
                         [](const auto& each) { return each.param.name; });

// A frame that came through as it was would be kept by anything.
TEST_P(GoldenFrame, IsNotThePictureItself) {
  const Golden& golden = GetParam();
  Samples picture(static_cast<std::size_t>(golden.width) * golden.height * 4);
  FillPicture(golden.width, golden.height, &picture);
  const Samples kept = Read(golden);
  ASSERT_EQ(picture.size() + 2, kept.size());

  std::size_t same = 0;
  for (std::size_t i = 0; i < picture.size(); ++i) {
    same += picture[i] >> 1 == kept[i + 2] >> 1 ? 1 : 0;
  }

  EXPECT_LT(same, picture.size() / 4);
}

}  // namespace
