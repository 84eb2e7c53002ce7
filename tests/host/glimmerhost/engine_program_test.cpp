// SPDX-License-Identifier: BSD-3-Clause
// The engines of the effect as a person chooses one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "fftlib/backends/footprint.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/page.h"
#include "host/module/frame_checks.h"
#include "host/module/module_choice.h"
#include "host/shots/manifest.h"
#include "host/support/failure.h"
#include "tests/host/glimmerhost/program_here.h"
#include "tests/host/glimmerhost/shot_program.h"
#include "tests/support/looks.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Picture;
using host_test::Bytes;
using host_test::Outcome;
using host_test::Read;
using host_test::RunHere;
using host_test::RunProgram;

class EngineProgram : public host_test::ShotProgram {
 public:
  // The module's file that "Module" in a manifest is the hash of.
  static std::string ModuleIn(const std::string& manifest) {
    const std::string name = "\"module\":\"";
    const std::size_t begin = manifest.find(name) + name.size();
    return manifest.substr(begin, manifest.find('"', begin) - begin);
  }

  // A copy of an engine's module under a name that says nothing.
  std::string CopyOfModule(const std::string& engine) {
    const fs::path file =
        fs::path(MODULE_FOLDER) / (engine == "exact" ? "" : engine) / fs::path(MODULE_NAME);
    fs::copy_file(file, folder / "other.module", fs::copy_options::overwrite_existing);
    return (folder / "other.module").string();
  }
};

void ExpectPart(const std::string& text, const std::string& part) {
  EXPECT_NE(std::string::npos, text.find(part)) << part << "\nin\n" << text;
}

void ExpectRefused(const std::string& arguments, const std::string& says) {
  const Outcome outcome = RunHere(arguments);
  EXPECT_EQ(2, outcome.code) << arguments;
  EXPECT_EQ(0U, outcome.text.find("glimmerhost: ")) << outcome.text;
  EXPECT_EQ(outcome.text.size() - 1, outcome.text.find('\n')) << outcome.text;
  ExpectPart(outcome.text, says);
}

int LargestDifference(const Picture& a, const Picture& b) {
  int largest = a.samples.size() == b.samples.size() ? 0 : 65536;
  for (std::size_t i = 0; i < std::min(a.samples.size(), b.samples.size()); ++i) {
    largest = std::max(largest, std::abs(a.samples[i] - b.samples[i]));
  }
  return largest;
}

// One step of the effect's 16 bits, two of which are one of the 15 that pass the border.
TEST_F(EngineProgram, RendersByEachEngineWhatExactDoesToOneStep) {
  const fs::path input = WriteInput("in.png", 90, 40);
  const std::string look = "--shape polygon --sides 5 --radius 7px --emphasis 20 ";
  std::map<std::string, std::string> modules;
  for (const std::string engine : {"fast", "exact", "double", "single"}) {
    const std::string manifest = "--manifest '" + (folder / (engine + ".json")).string() + "'";
    const Outcome outcome =
        RunHere(Render(input, engine + ".png", look + "--engine " + engine + " " + manifest));
    ASSERT_EQ(0, outcome.code) << outcome.text;
    const std::string line = Bytes(folder / (engine + ".json"));
    ExpectPart(line, "\"engine\":\"" + engine + "\"");
    modules[ModuleIn(line)] = engine;
  }

  EXPECT_EQ(4U, modules.size()) << "each by a module of its own";
  const Picture exact = Read(folder / "exact.png");
  EXPECT_EQ(0, LargestDifference(exact, Read(folder / "fast.png")));
  EXPECT_GE(2, LargestDifference(exact, Read(folder / "double.png")));
  EXPECT_GE(2, LargestDifference(exact, Read(folder / "single.png")));
  EXPECT_LT(1000, LargestDifference(exact, Read(input))) << "nothing has been rendered";
}

TEST_F(EngineProgram, TakesFastWhereNoneIsChosen) {
  const fs::path input = WriteInput("in.png", 90, 40);
  const auto render = [&](const std::string& name, const std::string& engine) {
    const std::string manifest = "--manifest '" + (folder / (name + ".json")).string() + "' ";
    const Outcome outcome =
        RunHere(Render(input, name + ".png", "--radius 7px " + manifest + engine));
    EXPECT_EQ(0, outcome.code) << outcome.text;
    return ModuleIn(Bytes(folder / (name + ".json")));
  };

  EXPECT_EQ(render("fast", "--engine fast"), render("none", ""));
  EXPECT_TRUE(Bytes(folder / "fast.png") == Bytes(folder / "none.png"));
  ExpectPart(Bytes(folder / "none.json"), "\"engine\":\"fast\"");
  ExpectPart(RunHere(Render(input, "x.png", "--explain")).text, "Engine              fast: ");
}

TEST_F(EngineProgram, TellsInInfoAndKeepsInManifestsByWhatArithmeticFramesComeAbout) {
  const fs::path input = WriteInput("in.png", 90, 40);
  for (const std::string engine : {"fast", "exact", "double", "single"}) {
    const std::string info = RunHere("info --engine " + engine).text;
    const std::string manifest = (folder / (engine + ".json")).string();
    ASSERT_EQ(0, RunHere(Render(input, engine + ".png",
                                "--radius 7px --manifest '" + manifest + "' --engine " + engine))
                     .code);

    const std::string arithmetic = glimmerhost::ReadManifest(manifest).begin()->second.arithmetic;

    EXPECT_EQ(0U, arithmetic.find(engine + " 1")) << arithmetic;
    ExpectPart(info, "\nArithmetic " + arithmetic + "\n");
  }
}

TEST_F(EngineProgram, WorksInEveryCommandThatLoadsTheModule) {
  const std::string input = WriteInput("in.png", 90, 40).string();
  std::ofstream(folder / "a.session") << "load in.png\nrender\nsave by-session.png\n";
  const std::string out = (folder / "").string();

  const Outcome psf = RunHere("psf -o '" + out + "psf.png' --size 90x40 --engine double");
  const Outcome page =
      RunHere("page '" + input + "' -o '" + out + "page.png' --shape image --engine single");
  const Outcome session =
      RunHere("session '" + out + "a.session' -o '" + out + "' --radius 5px --engine single");

  EXPECT_EQ(0, psf.code) << psf.text;
  EXPECT_EQ(0, page.code) << page.text;
  ASSERT_EQ(0, session.code) << session.text;
  ASSERT_EQ(0, RunHere(Render(input, "single.png", "--radius 5px --engine single")).code);
  ASSERT_EQ(0, RunHere(Render(input, "exact.png", "--radius 5px")).code);
  EXPECT_EQ(0, LargestDifference(Read(folder / "single.png"), Read(folder / "by-session.png")));
  EXPECT_NE(0, LargestDifference(Read(folder / "exact.png"), Read(folder / "by-session.png")));
}

TEST_F(EngineProgram, RefusesAnEngineThatThereIsNotAndOneBesideAModuleFile) {
  const std::string input = WriteInput("in.png", 20, 20).string();
  std::ofstream(folder / "a.session") << "load in.png\n";
  const std::string out = (folder / "out.png").string();
  const std::string commands[] = {
      "render '" + input + "' -o '" + out + "' ",
      "submit '" + input + "' -o '" + out + "' ",
      "psf -o '" + out + "' ",
      "page '" + input + "' -o '" + out + "' ",
      "session '" + (folder / "a.session").string() + "' ",
      "info ",
  };
  for (const std::string& command : commands) {
    ExpectRefused(command + "--engine Double", "--engine must be ");
    ExpectRefused(command + "--engine fftw", "fast, exact, double or single, not fftw\n");
    ExpectRefused(command + "--engine double --module none.so",
                  "--engine double and --module none.so cannot be given together");
  }
  ExpectRefused(commands[1] + "--engine double --engine single",
                "--engine single cannot be given beside --engine double");
  ExpectRefused(commands[1] + "--engine local --engine local",
                "--engine local cannot be given beside --engine local");
  EXPECT_EQ(2, folder.FileCount());
}

// 700 + 2 * 21 is 742, 300 + 2 * 21 is 342.
TEST_F(EngineProgram, ExplainsByTheModuleThatWouldRun) {
  const std::string input = WriteInput("in.png", 700, 300).string();
  struct {
    std::string engine;
    std::string grid;
    std::string memory;
    std::string next;
  } const cases[] = {
      // Both sides just hold frame and margin. 385 columns of a row are 49 blocks of 8, each of
      // them
      // 16 doubles a row: the PSF's of 360 rows, and four planes' of 301.
      {"fast", "768 x 360", "13 MiB", "above a radius of 29 pixels a grid of 768 x 384\n"},
      // 5 * 1024^2 * 8 + 2 * 1024 * 513 * 16
      {"exact", "1024 x 1024", "57 MiB", "above a radius of 161 pixels a grid of 2048 x 2048\n"},
      // 5 * 1024 * 512 * 16
      {"double", "1024 x 512", "40 MiB", "above a radius of 105 pixels a grid of 1024 x 1024\n"},
      {"single", "1024 x 512", "20 MiB", "above a radius of 105 pixels a grid of 1024 x 1024\n"},
  };
  for (const auto& [engine, grid, memory, next] : cases) {
    for (const std::string& way :
         {"--engine " + engine, "--module '" + CopyOfModule(engine) + "'"}) {
      const Outcome outcome = RunHere(Render(input, "out.png", "--radius 20px --explain " + way));
      EXPECT_EQ(0, outcome.code) << outcome.text;
      ExpectPart(outcome.text, "Engine              " + engine + ": ");
      ExpectPart(outcome.text, "Grid                " + grid + "\n");
      ExpectPart(outcome.text, "Memory              " + memory + " for the effect");
      ExpectPart(outcome.text, next);
    }
  }
}

TEST_F(EngineProgram, CountsAModuleThatSaysNothingAsExact) {
  const std::string input = WriteInput("in.png", 90, 40).string();
  const Outcome outcome =
      RunHere(Render(input, "out.png", "--radius 7px --explain --module '" COPYING_MODULE "'"));
  ExpectPart(outcome.text, "Engine              exact: ");
  ExpectPart(outcome.text, "Grid                128 x 128\n");
}

TEST_F(EngineProgram, ListsTheEnginesAndTheOneInUse) {
  const auto lineOf = [](const std::string& text, const std::string& name) {
    const std::size_t begin = text.find("\n  " + name + " ");
    return text.substr(begin + 1, text.find('\n', begin + 1) - begin - 1);
  };
  const std::string inUse = "; the one in use";
  for (const std::string used : {"fast", "exact", "double", "single"}) {
    const std::string text = RunHere("info --engine " + used).text;
    ExpectPart(text, ", engine " + used + "\n");
    for (const lx::Footprint& engine : lx::kFootprints) {
      const std::string line = lineOf(text, std::string(engine.name));
      EXPECT_EQ(engine.name == used, line.ends_with(inUse)) << line;
      ExpectPart(line, std::string(engine.description));
      EXPECT_EQ(std::string::npos, line.find("not installed")) << line;
    }
    ExpectPart(RunHere("info --module '" + CopyOfModule(used) + "'").text,
               "Module other.module, engine " + used + "\n");
  }
}

TEST_F(EngineProgram, GivesItsChunksTheEngine) {
  WriteShot(1, 3);
  ASSERT_EQ(0, RunHere(Shot("whole.@.png", "--radius 9px --engine single")).code);
  const std::string submit = "submit '" + (folder / "in.@.png").string() + "' -o '" +
                             (folder / "out.@.png").string() +
                             "' --radius 9px --chunk 2 --engine single ";

  const std::string shown = RunHere(submit + "--dry-run").text;
  const Outcome outcome = RunProgram(submit + "--engine local");

  ExpectPart(shown, "--engine=single ");
  EXPECT_EQ(std::string::npos, shown.find("--engine=local")) << shown;
  EXPECT_EQ(0, outcome.code) << outcome.text;
  for (const char* frame : {"1", "2", "3"}) {
    EXPECT_TRUE(Bytes(folder / ("whole." + std::string(frame) + ".png")) ==
                Bytes(folder / ("out." + std::string(frame) + ".png")))
        << frame;
  }
}

// More than any machine has, but for 1 x 1.
constexpr lx::Footprint kGreedy = {
    "greedy", "",
    [](std::int32_t w, std::int32_t h, std::int32_t) {
      return lx::GridSides{w, h};
    },
    [](lx::Size, const lx::GridSides&) { return std::uint64_t{1} << 60U; }, 8192};

// A file is looked through in pieces whose size is no affair of this test's: every place around
// every power of two up to 256 KiB.
TEST(EngineOfFile, IsFoundWhereverInTheFileItStands) {
  const lx_test::ScratchFolder folder;
  const std::string marker("GlimmerBlur engine: double\00012\0", 30);
  const fs::path file = folder / "some.module";
  const auto engineAt = [&](std::size_t place) {
    std::ofstream(file, std::ios::binary) << std::string(place, 'x') << marker << "end";
    const glimmerhost::ModuleChoice choice = glimmerhost::ChoiceOfFile(file);
    return std::string(choice.engine->name) + choice.arithmetic;
  };

  EXPECT_EQ("double12", engineAt(0));
  for (std::size_t power = 4096; power <= 0x40000; power *= 2) {
    for (std::size_t place = power - 100; place < power + 100; ++place) {
      ASSERT_EQ("double12", engineAt(place)) << place;
    }
  }
}

TEST(EngineOfFile, IsExactWhereItsNameIsCutOffOrThereIsNoFile) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "some.module", std::ios::binary) << "xGlimmerBlur engine: double";

  EXPECT_EQ("exact", glimmerhost::ChoiceOfFile(folder / "some.module").engine->name);
  EXPECT_EQ("exact", glimmerhost::ChoiceOfFile(folder / "none.module").engine->name);
}

TEST(EngineRefusal, IsToldByTheEngineThatWillRun) {
  glimmerhost::TypedLook typed;
  typed["radius"] = "4px";
  const auto values = lx_test::StillValuesOf(glimmerhost::Page::Load(PAGE), typed, 1920, 1080);

  EXPECT_NO_THROW(glimmerhost::CheckGrid(*lx::FindFootprint("single"), values, 1920, 1080));
  try {
    glimmerhost::CheckGrid(kGreedy, values, 1920, 1080);
    FAIL();
  } catch (const glimmerhost::Failure& fault) {
    ExpectPart(fault.what(), "needs 1099511627776 MiB for the effect");
  }
}

}  // namespace
