// SPDX-License-Identifier: BSD-3-Clause
// Films through the program, where ffmpeg is installed.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/host/glimmerhost/program.h"

namespace {

namespace fs = std::filesystem;
using host_test::Outcome;
using host_test::RunProgram;

class FilmProgram : public host_test::Program {
 public:
  void SetUp() override {
    if (lx_test::RunChild("/bin/sh", {"-c", "command -v ffmpeg && command -v ffprobe"}).code != 0) {
      GTEST_SKIP() << "ffmpeg is not installed";
    }
    Shell(
        "ffmpeg -v error -nostdin -f lavfi -i mandelbrot=s=64x48:r=24000/1001 -f lavfi -i sine "
        "-frames:v 6 -shortest -pix_fmt gbrp16le -c:v ffv1 -level 3 -c:a flac '" +
        film.string() + "'");
  }

  // A shell's command that must do.
  static void Shell(const std::string& command) {
    const Outcome outcome = lx_test::RunChild("/bin/sh", {"-c", "exec " + command});
    ASSERT_EQ(0, outcome.code) << outcome.text;
  }

  const fs::path film = folder / "in.mkv";
};

const std::string kLook = "--radius 'first=1px; last=6px' --emphasis 20 --quiet ";

// A coding that loses nothing: each frame is what it is as a picture of its own.
TEST_F(FilmProgram, RendersAFilmAsItsFrames) {
  ASSERT_EQ(0, RunProgram(Render(film, "out.mkv", kLook)).code);
  ASSERT_EQ(0, RunProgram(Render(film, "out.#.png", kLook)).code);
  Shell("ffmpeg -v error -nostdin -i '" + (folder / "out.mkv").string() +
        "' -pix_fmt rgb48be -start_number 1 '" + (folder / "of-film.%04d.png").string() + "'");
  for (int frame = 1; frame <= 6; ++frame) {
    const std::string end = ".000" + std::to_string(frame) + ".png";
    EXPECT_EQ(host_test::Read(folder / ("out" + end)).samples,
              host_test::Read(folder / ("of-film" + end)).samples)
        << frame;
  }
  EXPECT_NE(host_test::Read(folder / "out.0001.png").samples,
            host_test::Read(folder / "out.0006.png").samples);
}

TEST_F(FilmProgram, RendersPartOfAFilmAsOfTheWhole) {
  ASSERT_EQ(0, RunProgram(Render(film, "out.#.png", kLook)).code);
  const std::string manifest = (folder / "part.jsonl").string();
  ASSERT_EQ(0, RunProgram(Render(film, "part.#.png",
                                 kLook + "--frames 2,4-5 --manifest '" + manifest + "'"))
                   .code);
  for (const std::string end : {".0002.png", ".0004.png", ".0005.png"}) {
    EXPECT_EQ(host_test::Read(folder / ("out" + end)).samples,
              host_test::Read(folder / ("part" + end)).samples)
        << end;
  }
  EXPECT_FALSE(fs::exists(folder / "part.0003.png"));
  std::ifstream in(manifest);
  const std::string lines{std::istreambuf_iterator<char>(in), {}};
  EXPECT_NE(std::string::npos, lines.find("\"input\":\"" + film.string() + "\"")) << lines;
  EXPECT_NE(std::string::npos, lines.find("\"shot\":\"1-6\"")) << lines;
}

TEST_F(FilmProgram, RefusesWhatAFilmCannotBe) {
  const auto still = WriteInput("still.png", 8, 6);
  ExpectProgramRefusal(Render(still, "out.mov"), 2, "needs a film as INPUT");
  ExpectProgramRefusal(Render(film, "out.avi"), 2, "a film that ends in .mov, .mp4 or .mkv");
  ExpectProgramRefusal(Render(film, "out.mkv", "--frames 9"), 2, "frame 9 is not in the shot 1-6");
  ExpectProgramRefusal(Render(film, "out.mkv", "--shot 1-9 --frames 9"), 3,
                       "it has the frames 1-6, and not 9");
  ExpectProgramRefusal(Render(film, "out.mkv", "--frames 5,3"), 2, "--frames must go forward");
  ExpectProgramRefusal(Render(film, "out.mkv", "--skip-existing"), 2,
                       "--skip-existing needs single pictures as -o, not a film");
  ExpectProgramRefusal(Render(film, "out.mkv", "--explain"), 2,
                       "--explain needs single pictures as INPUT, not a film");
  ExpectProgramRefusal("submit '" + film.string() + "' -o '" + (folder / "o.#.png").string() + "'",
                       2, "INPUT must be single pictures");
  ExpectProgramRefusal(Render(folder / "none.mkv", "out.mkv"), 3, "none.mkv: not found");
  fs::copy(film, folder / "there.mkv");
  ExpectProgramRefusal(Render(film, "there.mkv"), 1, "exists already; --overwrite replaces it");
}

// Nothing of a film that is damaged passes for good.
TEST_F(FilmProgram, LeavesNoFilmWhereItsInputIsDamaged) {
  fs::resize_file(film, fs::file_size(film) / 2);
  const Outcome outcome = RunProgram(Render(film, "out.mkv", kLook));
  EXPECT_NE(0, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find(film.string())) << outcome.text;
  EXPECT_EQ(1, folder.FileCount());
}

}  // namespace
