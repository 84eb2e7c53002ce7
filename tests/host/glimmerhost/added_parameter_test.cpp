// SPDX-License-Identifier: BSD-3-Clause
// A parameter that is added to the page's file, and to nothing else.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/host/glimmerhost/program.h"

namespace {

using lx_test::Outcome;
namespace fs = std::filesystem;

std::string TextOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// The program with its modules, in a tree with another page.
class AddedParameter : public testing::Test {
 public:
  AddedParameter() {
    const fs::path tree = fs::path(PROGRAM).parent_path().parent_path();
    fs::create_directories(folder / "bin");
    fs::create_directories(folder / "share/glimmerblur/pages");
    fs::copy_file(PROGRAM, folder / "bin/glimmerhost");
    fs::create_directory_symlink(fs::path(MODULE_FOLDER).parent_path(),
                                 folder / fs::path(MODULE_FOLDER).parent_path().filename());
    fs::create_directory_symlink(tree / "share/glimmerblur/presets",
                                 folder / "share/glimmerblur/presets");
    std::ofstream(folder / "share/glimmerblur/pages/glimmerblur.toml")
        << TextOf(PAGE) << "\n[[parameter]]\nkey = \"PRM_Grain\"\noption = \"--grain\"\n"
        << "value = \"SHARE\"\ngroup = \"Highlights\"\nhelp = \"Grain, {range}\"\n"
        << "label = \"Grain\"\nkind = \"number\"\ndefault = 0.5\nrange = [0.0, 2.0]\n";
  }

  Outcome Run(const std::string& arguments) {
    return lx_test::RunChild((folder / "bin/glimmerhost").string(),
                             lx_test::SplitArguments(arguments));
  }

  // Renders with a look and a manifest; what is told of it.
  Outcome Render(const std::string& options) {
    return Run("render '" NIGHT "' --quiet --overwrite -o '" + (folder / "out.png").string() +
               "' --save-params '" + (folder / "look.toml").string() + "' --manifest '" +
               (folder / "frames.jsonl").string() + "' " + options);
  }

  lx_test::ScratchFolder folder;
};

TEST_F(AddedParameter, IsInHelpAndCompletion) {
  const std::string help = Run("render --help").text;
  EXPECT_NE(std::string::npos, help.find("  --grain SHARE           Grain, 0 to 2\n")) << help;

  const std::string words = Run("--complete session").text;
  EXPECT_NE(std::string::npos, words.find("\n--grain SHARE\n")) << words;
}

TEST_F(AddedParameter, IsInTheStoreAndInASavedLook) {
  const Outcome typed = Render("--grain 1.25");
  EXPECT_EQ(0, typed.code) << typed.text;
  EXPECT_NE(std::string::npos, TextOf(folder / "look.toml").find("\ngrain = 1.25\n"));
  EXPECT_NE(std::string::npos, TextOf(folder / "frames.jsonl").find("\"PRM_Grain\":\"1.25\""));

  fs::rename(folder / "look.toml", folder / "kept.toml");
  const Outcome read = Render("--params '" + (folder / "kept.toml").string() + "'");
  EXPECT_EQ(0, read.code) << read.text;
  EXPECT_NE(std::string::npos, TextOf(folder / "look.toml").find("\ngrain = 1.25\n"));
}

TEST_F(AddedParameter, IsRefusedOutsideItsRange) {
  const Outcome outcome = Render("--grain 3");
  EXPECT_EQ(2, outcome.code);
  EXPECT_EQ("glimmerhost: --grain must be a number from 0 to 2, not 3\n", outcome.text);
}

TEST_F(AddedParameter, IsNoPlaceForAKeyThatTheProgramReads) {
  const fs::path page = folder / "share/glimmerblur/pages/glimmerblur.toml";
  std::string text = TextOf(page);
  text.replace(text.find("key = \"PRM_Shape\""), 17, "key = \"PRM_Form\"");
  std::ofstream(page) << text;

  const Outcome outcome = Render("");

  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos,
            outcome.text.find("not a page for this program: PRM_Shape is missing"))
      << outcome.text;
}

}  // namespace
