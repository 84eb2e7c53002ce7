// SPDX-License-Identifier: BSD-3-Clause
// The program as a person runs it, in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "host/pictures/picture_file.h"
#include "tests/support/child_program.h"
#include "tests/support/command_line_run.h"
#include "tests/support/scratch_folder.h"

namespace host_test {

using glimmerhost::Alpha;
using glimmerhost::Picture;
namespace fs = std::filesystem;

using lx_test::Outcome;

//   arguments  parted as a shell would
inline Outcome RunProgram(const std::string& arguments, const lx_test::Variables& variables = {},
                          const lx_test::Streams& streams = {}) {
  return lx_test::RunChild(PROGRAM, lx_test::SplitArguments(arguments), variables, streams);
}

inline Picture Read(const fs::path& file) {
  std::string warning;
  return glimmerhost::ReadPicture(file, &warning);
}

class Program : public testing::Test {
 public:
  fs::path WriteInput(const std::string& name, int width, int height, Alpha alpha = Alpha::kNone,
                      bool constant = false) {
    Picture picture;
    picture.width = width;
    picture.height = height;
    picture.alpha = alpha;
    picture.samples.resize(picture.PixelCount() * 4);
    for (std::size_t i = 0; i < picture.samples.size(); ++i) {
      const std::uint16_t even[] = {50000, 20000, 5000, 40000};
      picture.samples[i] = constant ? even[i % 4] : static_cast<std::uint16_t>(i * 7919);
      if (i % 4 == 3 && alpha == Alpha::kNone) {
        picture.samples[i] = 65535;
      }
    }
    glimmerhost::PictureOutput output(folder / name, true);
    output.Write(picture, 16);
    return folder / name;
  }

  std::string Render(const fs::path& input, const std::string& output,
                     const std::string& options = "") {
    return "render '" + input.string() + "' -o '" + (folder / output).string() + "' " + options;
  }

  // What the command line refuses; run in this process.
  void ExpectRefusal(const std::string& arguments, int code, const std::string& says) {
    ExpectRefusalBy(arguments, code, says, [](const std::string& line) {
      const lx_test::CommandLineRun run =
          lx_test::RunCommandLineHere(lx_test::SplitArguments(line));
      return Outcome{run.code, run.out + run.err, 0};
    });
  }

  // The same of a process of its own: other modules would stay loaded in this one.
  void ExpectProgramRefusal(const std::string& arguments, int code, const std::string& says) {
    ExpectRefusalBy(arguments, code, says,
                    [](const std::string& line) { return RunProgram(line); });
  }

  lx_test::ScratchFolder folder;

 private:
  template <class Run>
  void ExpectRefusalBy(const std::string& arguments, int code, const std::string& says,
                       const Run& run) {
    const int files = folder.FileCount();
    const Outcome outcome = run(arguments);
    EXPECT_EQ(code, outcome.code) << arguments << "\n" << outcome.text;
    EXPECT_EQ(0U, outcome.text.find("glimmerhost: ")) << outcome.text;
    EXPECT_EQ(outcome.text.size() - 1, outcome.text.find('\n')) << outcome.text;
    EXPECT_NE(std::string::npos, outcome.text.find(says)) << outcome.text;
    EXPECT_EQ(files, folder.FileCount()) << arguments;
  }
};

}  // namespace host_test
