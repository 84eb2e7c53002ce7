// SPDX-License-Identifier: BSD-3-Clause
// Measured plans of the engine that has them, as a person keeps them. The machine's settings are
// the test's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <thread>

#include "tests/host/glimmerhost/machine_home.h"
#include "tests/host/glimmerhost/program.h"

namespace {

using host_test::Outcome;
namespace fs = std::filesystem;

// Any value will do.
const lx_test::Variables kMeasure{{"LX_USE_FFTW_WISDOM", "1"}};

class WisdomProgram : public host_test::Program {
 public:
  WisdomProgram() { settings.Set(home); }

  Outcome RunHere(const std::string& arguments, lx_test::Variables variables = {}) const {
    variables.merge(settings.Variables());
    return host_test::RunProgram(arguments, variables);
  }

  std::string RenderSmall(const std::string& output, const std::string& engine = "exact") {
    return Render(WriteInput("in.png", 40, 30), output,
                  "--radius 3px --overwrite --engine " + engine);
  }

  const host_test::MachineHome settings{folder / ""};
  const fs::path home = folder / "home";
  const fs::path file = home / "Settings" / "fftw3_wisdom_lx.dat";
};

std::string Contents(const fs::path& file) {
  std::ifstream in(file);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::set<std::string> Lines(const fs::path& file) {
  std::ifstream in(file);
  std::set<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    lines.insert(line);
  }
  return lines;
}

TEST_F(WisdomProgram, RendersWithoutTheVariableTouchNothing) {
  const Outcome outcome = RunHere(RenderSmall("out.png"));

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_FALSE(fs::exists(home));
}

TEST_F(WisdomProgram, ARenderOnRequestKeepsItsPlans) {
  const Outcome outcome = RunHere(RenderSmall("out.png"), {{"LX_USE_FFTW_WISDOM", ""}});

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ("", outcome.text);
  EXPECT_EQ(0U, Contents(file).find("(fftw-"));
  EXPECT_TRUE(fs::is_directory(home / "Logs"));
}

TEST_F(WisdomProgram, ARenderByAnEngineWithoutPlansTouchesNothingOnRequest) {
  const Outcome outcome = RunHere(RenderSmall("out.png", "fast"), kMeasure);

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_FALSE(fs::exists(home));
}

TEST_F(WisdomProgram, ANewProcessKeepsWhatAnotherHasLearnt) {
  RunHere(RenderSmall("out.png"), kMeasure);
  const std::set<std::string> first = Lines(file);

  const Outcome outcome = RunHere(
      Render(WriteInput("in.png", 200, 30), "out.png", "--overwrite --engine exact"), kMeasure);

  EXPECT_EQ(0, outcome.code) << outcome.text;
  const std::set<std::string> second = Lines(file);
  EXPECT_TRUE(std::includes(second.begin(), second.end(), first.begin(), first.end()));
  EXPECT_LT(first.size(), second.size());
}

TEST_F(WisdomProgram, TwoProcessesAtOnceLeaveAWholeFile) {
  const std::string first = RenderSmall("a.png");
  const std::string second = RenderSmall("b.png");
  std::thread other([&] { RunHere(first, kMeasure); });
  RunHere(second, kMeasure);
  other.join();

  const std::string content = Contents(file);
  EXPECT_EQ(0U, content.find("(fftw-"));
  EXPECT_EQ(content.size() - 2, content.rfind(")\n"));
  const auto left = fs::directory_iterator(file.parent_path());
  EXPECT_EQ(1, std::distance(begin(left), end(left)));
}

TEST_F(WisdomProgram, AHomeThatCannotBeMadeChangesNothingOfAPicture) {
  RunHere(RenderSmall("plain.png"));
  std::ofstream(folder / "taken") << "a file";
  settings.Set(folder / "taken/home");

  const Outcome outcome = RunHere(RenderSmall("out.png"), kMeasure);

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ("", outcome.text);
  EXPECT_TRUE(fs::exists(folder / "out.png"));
}

TEST_F(WisdomProgram, MakesTheDirectoriesAndSaysWhereTheFileWillBe) {
  const Outcome outcome = RunHere("wisdom");

  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ("Settings directory  " + (home / "Settings").string() + "\nWisdom file         " +
                file.string() + ", not there yet\n",
            outcome.text);
  EXPECT_TRUE(fs::is_directory(home / "Settings"));
  EXPECT_TRUE(fs::is_directory(home / "Logs"));
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(WisdomProgram, MeasuresAGridAhead) {
  const Outcome outcome = RunHere("wisdom --measure --grid 512");

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("Measured            512 x 512, "))
      << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find(file.string() + ", " +
                                                 std::to_string(fs::file_size(file)) + " bytes\n"))
      << outcome.text;
  EXPECT_EQ(0U, Contents(file).find("(fftw-"));
  const int files = folder.FileCount();
  RunHere("wisdom --measure --grid 512");
  EXPECT_EQ(files, folder.FileCount());
}

TEST_F(WisdomProgram, NamesTheHomeThatItCannotMake) {
  std::ofstream(folder / "taken") << "a file";
  const fs::path inFile = folder / "taken" / "home";
  settings.Set(inFile);

  const Outcome outcome = RunHere("wisdom --measure");

  EXPECT_EQ(1, outcome.code);
  EXPECT_EQ("Settings directory  " + (inFile / "Settings").string() +
                "\nglimmerhost: the directories in " + inFile.string() + " could not be made; " +
                host_test::kHomeAdvice + "\n",
            outcome.text);
}

TEST_F(WisdomProgram, RefusesAGridThatItDoesNotMeasure) {
  ExpectRefusal("wisdom --measure --grid 700", 2, "--grid must be 512, 1024, 2048 or 4096");
  ExpectRefusal("wisdom --grid 512", 2, "--grid");
}

}  // namespace
