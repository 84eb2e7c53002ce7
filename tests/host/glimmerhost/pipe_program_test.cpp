// SPDX-License-Identifier: BSD-3-Clause
// Pictures that come and go one after another, as between programs.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/pam_stream.h"
#include "tests/host/glimmerhost/program.h"

namespace {

using glimmerhost::PamReader;
using host_test::Alpha;
using host_test::Outcome;
using host_test::Picture;
using host_test::Read;
using host_test::RunProgram;
namespace fs = std::filesystem;

using StreamFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

StreamFile Open(const fs::path& file, const char* mode) {
  return {std::fopen(file.string().c_str(), mode), std::fclose};
}

class PipeProgram : public host_test::Program {
 public:
  // Frames as files in.1.png and so on, and one after another as in.pam.
  void WriteShot(int count) {
    const StreamFile pipe = Open(folder / "in.pam", "wb");
    for (int frame = 1; frame <= count; ++frame) {
      Picture picture;
      picture.width = 60;
      picture.height = 40;
      picture.alpha = Alpha::kStraight;
      for (std::size_t i = 0; i < picture.PixelCount() * 4; ++i) {
        picture.samples.push_back(
            i % 4 == 3
                ? std::uint16_t{65535}
                : static_cast<std::uint16_t>(i * 7919U * (static_cast<unsigned>(frame) + 1U)));
      }
      glimmerhost::WritePam(picture, pipe.get(), "in.pam");
      glimmerhost::PictureOutput(folder / ("in." + std::to_string(frame) + ".png"), false)
          .Write(picture, 16);
    }
  }

  std::vector<Picture> ReadPipe(const std::string& name) const {
    const StreamFile file = Open(folder / name, "rb");
    PamReader reader(file.get(), name);
    std::vector<Picture> pictures;
    while (std::optional<Picture> picture = reader.Next()) {
      pictures.push_back(std::move(*picture));
    }
    return pictures;
  }

  Outcome Run(const std::string& arguments, const std::string& input = "in.pam") const {
    return RunProgram("render " + arguments, {},
                      {(folder / input).string(), (folder / "out.pam").string()});
  }

  std::string File(const std::string& name) const { return "'" + (folder / name).string() + "'"; }
};

constexpr const char* kLook = " --shape polygon --radius '1=2px; 3=6px' --emphasis 40 ";

// What files hold that came of the same pictures is what a person expects of the pipe.
TEST_F(PipeProgram, RendersWhatFilesWouldGive) {
  WriteShot(3);
  ASSERT_EQ(0, RunProgram("render " + File("in.@.png") + " -o " + File("file.@.png") + kLook).code);

  const Outcome through = Run(std::string("- -o -") + kLook);

  EXPECT_EQ(0, through.code) << through.text;
  const std::vector<Picture> pictures = ReadPipe("out.pam");
  ASSERT_EQ(3U, pictures.size());
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(Read(folder / ("file." + std::to_string(i + 1) + ".png")).samples,
              pictures[i].samples);
  }
  EXPECT_NE(std::string::npos, through.text.find("frame 3: -, ")) << through.text;
}

TEST_F(PipeProgram, NumbersWhatComesOutOfAPipeFromOne) {
  WriteShot(2);
  const Outcome outcome = Run("- -o " + File("out.####.png") + kLook);
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_TRUE(fs::exists(folder / "out.0001.png"));
  EXPECT_TRUE(fs::exists(folder / "out.0002.png"));
  EXPECT_FALSE(fs::exists(folder / "out.0003.png"));
}

TEST_F(PipeProgram, NumbersItByTheList) {
  WriteShot(3);
  const std::string look = " --radius 'first=2px; last=6px' ";
  const Outcome outcome =
      Run("- -o " + File("out.#.png") + " --frames 1001-1003 --shot 1001-1003" + look);
  EXPECT_EQ(0, outcome.code) << outcome.text;
  ASSERT_EQ(0, RunProgram("render " + File("in.@.png") + " -o " + File("file.@.png") + look).code);
  EXPECT_EQ(Read(folder / "file.3.png").samples, Read(folder / "out.1003.png").samples);
}

TEST_F(PipeProgram, PutsFilesIntoAPipe) {
  WriteShot(3);
  const Outcome outcome = Run(File("in.@.png") + " -o - --frames 3,1" + kLook);
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ(2U, ReadPipe("out.pam").size());
}

TEST_F(PipeProgram, TakesOnePictureWhereOneFileIsNamed) {
  WriteShot(2);
  const Outcome outcome = Run("- -o " + File("one.png") + " --radius 2px");
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ("glimmerhost: standard input holds more pictures than were asked for\n", outcome.text);
  EXPECT_TRUE(fs::exists(folder / "one.png"));
}

// It counts from 1; with a list its frames may be any of a shot's.
TEST_F(PipeProgram, KnowsOfTheShotOnlyWhatIsTyped) {
  WriteShot(2);
  const std::string needs =
      " needs --shot FIRST-LAST: neither a pipe nor a still says which frames the shot has\n";
  const Outcome outcome = Run("- -o - --emphasis 'first=1; last=9'");
  EXPECT_EQ(2, outcome.code);
  EXPECT_EQ("glimmerhost: --emphasis first=1; last=9: the time last" + needs, outcome.text);
  EXPECT_EQ("glimmerhost: --emphasis first=1; 2=9: the time first" + needs,
            Run("- -o - --frames 1001-1002 --emphasis 'first=1; 2=9'").text);
  EXPECT_EQ(2, Run("- -o - --emphasis '50%=9'").code);
  EXPECT_EQ(0, Run("- -o - --emphasis 'first=1; 2=9'").code);
  EXPECT_EQ(0, Run("- -o - --frames 1-2 --shot 1-9 --emphasis 'first=1; last=9'").code);
}

TEST_F(PipeProgram, EndsAtAFrameThatTheShotHasNot) {
  WriteShot(3);
  const Outcome outcome = Run("- -o " + File("out.#.png") + " --shot 1-2" + kLook);
  EXPECT_EQ(2, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("frame 3 is not in the shot 1-2 (--shot)"))
      << outcome.text;
  EXPECT_TRUE(fs::exists(folder / "out.0002.png"));
}

TEST_F(PipeProgram, MissesWhatThePipeDoesNotHold) {
  WriteShot(2);
  const Outcome outcome = Run("- -o " + File("out.#.png") + " --frames 1-5 --keep-going" + kLook);
  EXPECT_EQ(3, outcome.code);
  EXPECT_NE(std::string::npos,
            outcome.text.find("glimmerhost: frame 3: standard input: it ends after 2 pictures\n"))
      << outcome.text;
  EXPECT_TRUE(fs::exists(folder / "out.0002.png"));

  std::ofstream(folder / "empty.pam").close();
  const Outcome none = Run("- -o -", "empty.pam");
  EXPECT_EQ(3, none.code);
  EXPECT_NE(std::string::npos, none.text.find("standard input: it holds no picture")) << none.text;
}

TEST_F(PipeProgram, StopsAtABrokenPicture) {
  WriteShot(3);
  const auto size = fs::file_size(folder / "in.pam");
  fs::resize_file(folder / "in.pam", size - size / 3 - 5);
  const Outcome outcome = Run("- -o " + File("out.#.png") + " --keep-going" + kLook);
  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos,
            outcome.text.find("frame 2: standard input: picture 2: cut short in row 40"))
      << outcome.text;
  EXPECT_TRUE(fs::exists(folder / "out.0001.png"));
  EXPECT_FALSE(fs::exists(folder / "out.0002.png"));
}

TEST_F(PipeProgram, PassesOverPicturesWhoseOutputsStand) {
  WriteShot(3);
  std::ofstream(folder / "out.0002.png") << "stands";
  const Outcome outcome = Run("- -o " + File("out.#.png") + " --skip-existing" + kLook);
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ(6U, fs::file_size(folder / "out.0002.png"));
  EXPECT_EQ(0, RunProgram("render " + File("in.@.png") + " -o " + File("file.@.png") + kLook).code);
  EXPECT_EQ(Read(folder / "file.3.png").samples, Read(folder / "out.0003.png").samples);
}

TEST_F(PipeProgram, KeepsAManifestOfWhatCameByIt) {
  WriteShot(2);
  const std::string manifest = File("shot.jsonl");
  EXPECT_EQ(0, Run("- -o " + File("out.#.png") + " --manifest " + manifest + kLook).code);
  EXPECT_EQ(0, RunProgram("check " + manifest + " --frames 1-2").code);
}

TEST_F(PipeProgram, RefusesWhatAPipeCannotDo) {
  const struct {
    const char* arguments;
    const char* says;
  } cases[] = {
      {"- -o - --explain", "--explain needs a file as INPUT, not a pipe (-)"},
      {"- -o - --dry-run", "--dry-run needs a file as INPUT"},
      {"- -o x.#.png --chunk 1/2", "--chunk 1/2 needs files"},
      {"x.#.png -o - --skip-existing", "--skip-existing needs a file as -o"},
      {"x.#.png -o - --keep-going", "--keep-going needs a file as -o"},
      {"x.#.png -o - --manifest m", "--manifest needs a file as -o"},
      {"x.#.png -o - --bits 8", "--bits 8 needs a file as -o"},
  };
  for (const auto& [arguments, says] : cases) {
    ExpectRefusal(std::string("render ") + arguments, 2, says);
  }
}

#ifndef _WIN32
TEST_F(PipeProgram, SaysThatNobodyTakesThePictures) {
  WriteShot(1);
  const Outcome outcome =
      RunProgram("render - -o - --radius 3px", {}, {(folder / "in.pam").string(), "/dev/full"});
  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos,
            outcome.text.find("standard output: cannot be written: No space left on device"))
      << outcome.text;
}
#endif

}  // namespace
