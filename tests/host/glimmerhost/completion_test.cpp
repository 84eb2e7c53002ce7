// SPDX-License-Identifier: BSD-3-Clause
// Completion of the command line, asked for as bash does.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/child_program.h"
#include "tests/support/scratch_folder.h"

namespace {

// What the last of some words may become, in a line.
std::string Replies(const std::string& words, const std::string& folder = "/") {
  const std::string script = "set -u\ncd '" + folder + "'\nsource '" COMPLETION "'\n" +
                             "COMP_WORDS=('" PROGRAM "' " + words +
                             ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n" +
                             "COMPREPLY=(none)\n_glimmerhost\nfor reply in \"${COMPREPLY[@]}\"; do "
                             "echo -n \"$reply \"\ndone";
  const lx_test::Outcome outcome = lx_test::RunChild("/bin/bash", {"--norc", "-c", script});
  EXPECT_EQ(0, outcome.code) << outcome.text;
  return outcome.text;
}

TEST(Completion, KnowsTheCommands) {
  EXPECT_EQ("render ", Replies("rend"));
  const std::string all = Replies("''");
  for (const char* command :
       {"render", "submit", "psf", "page", "session", "wisdom", "presets", "info"}) {
    EXPECT_NE(std::string::npos, all.find(std::string(command) + " ")) << all;
  }
  EXPECT_EQ(std::string::npos, all.find("--")) << all;
}

TEST(Completion, KnowsTheOptionsOfEachCommand) {
  EXPECT_EQ("--emphasis --emph-alpha ", Replies("render in.png --emph"));
  EXPECT_EQ("", Replies("psf --emph"));
  EXPECT_EQ("--output --overwrite ", Replies("render --o"));
  EXPECT_EQ("--output ", Replies("render --quiet --ou"));
  EXPECT_EQ("--grid ", Replies("wisdom --g"));
  EXPECT_EQ("--jobs ", Replies("submit --j"));
  EXPECT_EQ("--version ", Replies("--v"));
}

TEST(Completion, KnowsTheValuesThatAreNames) {
  EXPECT_EQ("circle ellipse polygon image ", Replies("render in.png --shape ''"));
  EXPECT_EQ("polygon ", Replies("render in.png --shape p"));
  EXPECT_EQ("polygon ", Replies("render in.png --shape = p"));
  EXPECT_EQ("circle ellipse polygon image ", Replies("render in.png --shape '='"));
  EXPECT_EQ("slurm single ", Replies("submit --engine s"));
  EXPECT_EQ("local ", Replies("submit --engine l"));
  EXPECT_EQ("fast exact double single ", Replies("render in.png --engine ''"));
  EXPECT_EQ("double ", Replies("info --engine d"));
  EXPECT_EQ("as-is ", Replies("render --alpha a"));
  EXPECT_EQ("clip scale: log: ", Replies("render --range ''"));
  EXPECT_EQ("512 1024 2048 4096 ", Replies("wisdom --grid ''"));
  EXPECT_EQ("six-blades soft-disc ", Replies("psf --preset s"));
}

TEST(Completion, OffersNothingForAValueThatIsNoFile) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "4px") << "x";
  EXPECT_EQ("", Replies("render in.png --radius ''", folder.Path().string()));
  EXPECT_EQ("", Replies("render in.png --radius = 4", folder.Path().string()));
}

TEST(Completion, OffersFoldersAloneWhereAFolderIsWanted) {
  const lx_test::ScratchFolder folder;
  std::filesystem::create_directory(folder / "out");
  std::ofstream(folder / "out.png") << "x";
  EXPECT_EQ("out ", Replies("session x.session -o o", folder.Path().string()));
  const std::string files = Replies("render in.png --output o", folder.Path().string());
  EXPECT_NE(std::string::npos, files.find("out.png ")) << files;
  EXPECT_NE(std::string::npos, files.find("out ")) << files;
}

TEST(Completion, OffersFilesElsewhere) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "film.toml") << "x";
  std::ofstream(folder / "film 2.png") << "x";
  std::ofstream(folder / "other.png") << "x";
  const std::string files = Replies("render film", folder.Path().string());
  EXPECT_NE(std::string::npos, files.find("film.toml ")) << files;
  EXPECT_NE(std::string::npos, files.find("film 2.png ")) << files;
  EXPECT_EQ(std::string::npos, files.find("other.png ")) << files;
  EXPECT_EQ("film.toml ", Replies("render in.png --params film.", folder.Path().string()));
}

}  // namespace
