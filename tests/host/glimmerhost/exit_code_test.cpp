// SPDX-License-Identifier: BSD-3-Clause
// What scripts and farms go by: the program's exit codes.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "tests/host/glimmerhost/program.h"

namespace {

namespace fs = std::filesystem;
using host_test::Outcome;
using host_test::RunProgram;

class ExitCode : public host_test::Program {
 public:
  std::string Quoted(const std::string& name) const { return "'" + (folder / name).string() + "'"; }

  const fs::path input = WriteInput("in.png", 8, 6);
};

TEST_F(ExitCode, IsThreeWhereverAnInputIsMissing) {
  fs::create_directory(folder / "empty");
  const std::string out = " -o " + Quoted("out.png");
  const std::string shot = " -o " + Quoted("out.@.png");
  for (const std::string& line :
       {"render " + Quoted("none.png") + out, "render " + Quoted("none/none.png") + out,
        "render " + Quoted("none.@.png") + shot, "render " + Quoted("empty/none.@.png") + shot,
        "render " + Quoted("none/none.@.png") + shot,
        "render --explain " + Quoted("none.@.png") + shot,
        "render --dry-run " + Quoted("none.@.png") + shot,
        "submit " + Quoted("empty/none.@.png") + shot, "submit " + Quoted("none/none.@.png") + shot,
        Render(input, "out.png", "--params " + Quoted("none.toml")),
        Render(input, "out.png", "--shape image --spread " + Quoted("none.png")),
        Render(input, "out.png", "--module " + Quoted("none.so")),
        "page " + Quoted("none.png") + out,
        "psf --shape image --spread " + Quoted("none.png") + out,
        "session " + Quoted("none.session"), "session " + Quoted("none/none.session"),
        "check " + Quoted("none.jsonl")}) {
    ExpectRefusal(line, 3,
                  line.find("@") == std::string::npos || line.find("none/") < line.size()
                      ? "not found"
                      : "no such files");
  }
}

TEST_F(ExitCode, IsOneForAFolderInTheInputsPlace) {
  fs::create_directory(folder / "folder");
  for (const std::string& line : {"render " + Quoted("folder") + " -o " + Quoted("out.png"),
                                  Render(input, "out.png", "--params " + Quoted("folder")),
                                  Render(input, "out.png", "--module " + Quoted("folder")),
                                  "session " + Quoted("folder"), "check " + Quoted("folder")}) {
    ExpectRefusal(line, 1, "folder: not a file");
  }
}

TEST_F(ExitCode, IsTwoForALookThatIsWrongHoweverItIs) {
  for (const auto& [name, text] :
       {std::pair<std::string, std::string>{"a.toml", "version = 1\nsides = "},
        {"b.toml", "version = 1\nsides = 99\n"},
        {"c.toml", "version = 1\nunheard = 1\n"},
        {"d.json", "{\"version\": 1,"},
        {"e.json", "{\"version\": 1, \"sides\": 99}"},
        {"f.toml", ""}}) {
    std::ofstream(folder / name) << text;
    ExpectRefusal(Render(input, "out.png", "--params " + Quoted(name)), 2, name);
  }
}

// Of a manifest that is there, outputs are looked at; what is wrong with them counts.
TEST_F(ExitCode, IsOneIfAnOutputHasChangedWhateverElseIsMissing) {
  const std::string manifest = Quoted("there.jsonl");
  ASSERT_EQ(0, RunProgram(Render(input, "out.png", "--manifest " + manifest)).code);
  std::ofstream(folder / "out.png") << "another";
  const Outcome outcome = RunProgram("check " + manifest + " " + Quoted("none.jsonl"));
  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("none.jsonl: not found")) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("out.png: changed since")) << outcome.text;
}

// A device that has room for nothing.
TEST_F(ExitCode, IsOneWhereverItsOutputIsNotTaken) {
  if (!fs::exists("/dev/full")) {
    GTEST_SKIP() << "no such device here";
  }
  const std::string manifest = Quoted("there.jsonl");
  ASSERT_EQ(0, RunProgram(Render(input, "made.png", "--manifest " + manifest)).code);
  for (const std::string& line :
       {std::string("--help"), std::string("--version"), std::string("info"),
        std::string("presets"), std::string("wisdom"), std::string("render --help"),
        std::string("--complete render"), "check " + manifest,
        Render(input, "out.png", "--dry-run"), Render(input, "out.png", "--explain"),
        "submit '" + input.string() + "' --dry-run -o " + Quoted("out.png"),
        "render '" + input.string() + "' -o -",
        std::string("session --overwrite --trace -o ") + Quoted(".") +
            " " EXAMPLES "/handles.session"}) {
    const Outcome outcome = RunProgram(line, {}, {"", "/dev/full"});
    EXPECT_EQ(1, outcome.code) << line;
    EXPECT_NE(std::string::npos, outcome.text.find("standard output: cannot be written"))
        << line << '\n'
        << outcome.text;
  }
}

}  // namespace
