// SPDX-License-Identifier: BSD-3-Clause
// The looks that come with the program, and looks as the program takes them.
#include "host/looks/presets.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "host/looks/keyframed_values.h"
#include "host/looks/look_layers.h"
#include "host/module/frame_checks.h"
#include "host/support/failure.h"
#include "tests/host/glimmerhost/program.h"

namespace {

using glimmerhost::KeyframedValues;
using glimmerhost::Page;
using glimmerhost::TypedLook;
using host_test::Program;
using host_test::RunProgram;

TEST(Presets, AreEachTakenByThePage) {
  const Page page = Page::Load(PAGE);
  const auto presets = glimmerhost::Presets();
  for (const glimmerhost::Preset& preset : presets) {
    TypedLook look;
    look.preset = preset.name;
    const KeyframedValues values(page, ReadLayers(page, look), 4096, 2160, {1, 100});
    for (const lx::Footprint& engine : lx::kFootprints) {
      EXPECT_NO_THROW(glimmerhost::CheckGrid(engine, values.At(1), 4096, 2160))
          << engine.name << ": " << preset.name;
    }
    EXPECT_LE(std::get<double>(values.At(1).at("PRM_Emphasis")), 75.0) << preset.name;
    EXPECT_GT(preset.summary.size(), 20U) << preset.name;
  }
  EXPECT_EQ(5U, presets.size());
}

TEST(Presets, LieBelowTheFileAndItBelowWhatIsTyped) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "film.toml") << "sides = 5\nrotation = 1\n";
  const Page page = Page::Load(PAGE);
  TypedLook look;
  look.preset = "six-blades";
  look.file = (folder / "film.toml").string();
  look["rotation"] = "2";

  const auto values = KeyframedValues(page, ReadLayers(page, look), 1000, 500, {1, 1}).At(1);

  EXPECT_EQ(2, std::get<int>(values.at("PRM_Shape")));
  EXPECT_EQ(50.0, std::get<double>(values.at("PRM_Emphasis")));
  EXPECT_EQ(5.0, std::get<double>(values.at("PRM_Sides")));
  EXPECT_EQ(2.0, std::get<double>(values.at("PRM_Rotation")));
}

TEST_F(Program, RefusesAnUnknownPresetWithTheNearest) {
  const std::string render = Render(NIGHT, "out.png");
  ExpectRefusal(render + "--preset six-blade", 2,
                "unknown preset \"six-blade\"; did you mean \"six-blades\"?");
  ExpectRefusal(render + "--preset ../pages/glimmerblur", 2, "unknown preset");
}

TEST_F(Program, TakesAlphaPixelAspectAndSpreadFromAFileAsWhenTyped) {
  const std::string input = WriteInput("in.png", 40, 30, glimmerhost::Alpha::kStraight).string();
  WriteInput("heart.png", 20, 20);
  const std::string shape = "--shape image --radius-psf1 4px --radius-psf2 6px ";
  std::ofstream(folder / "film.toml")
      << "spread = \"heart.png\"\nalpha = \"as-is\"\npixel-aspect = \"2:1\"\n";
  const auto render = [&](const std::string& name, const std::string& options) {
    const host_test::Outcome outcome = RunProgram(Render(input, name, shape + options));
    EXPECT_EQ(0, outcome.code) << outcome.text;
    return host_test::Read(folder / name);
  };

  const auto plain = render("plain.png", "");
  const auto typed = render("typed.png", "--alpha as-is --pixel-aspect 2:1 --spread '" +
                                             (folder / "heart.png").string() + "'");
  const auto read = render("read.png", "--params '" + (folder / "film.toml").string() + "'");

  EXPECT_EQ(typed.samples, read.samples);
  EXPECT_NE(plain.samples, read.samples);
}

}  // namespace
