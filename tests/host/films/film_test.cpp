// SPDX-License-Identifier: BSD-3-Clause
#include "host/films/film.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "host/films/film_reader.h"
#include "host/films/film_writer.h"
#include "host/pictures/pam_stream.h"
#include "host/support/failure.h"
#include "tests/support/child_program.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Film;
using glimmerhost::FilmReader;
using glimmerhost::FilmWriter;
using glimmerhost::LookIntoFilm;
using glimmerhost::PamReader;
using glimmerhost::Picture;

class Films : public testing::Test {
 public:
  void SetUp() override {
    if (lx_test::RunChild("/bin/sh", {"-c", "command -v ffmpeg && command -v ffprobe"}).code != 0) {
      GTEST_SKIP() << "ffmpeg is not installed";
    }
  }

  // A moving picture of 64 x 48, as ffmpeg makes it.
  //   options  of the film, behind the picture
  fs::path Make(const std::string& name, const std::string& options,
                const std::string& source = "mandelbrot=s=64x48:r=24000/1001") {
    const fs::path file = folder / name;
    const lx_test::Outcome outcome =
        lx_test::RunChild("/bin/sh", {"-c", "exec ffmpeg -v error -nostdin -f lavfi -i " + source +
                                                " " + options + " '" + file.string() + "'"});
    EXPECT_EQ(0, outcome.code) << outcome.text;
    return file;
  }

  static std::vector<int> All(const Film& film) {
    std::vector<int> frames(static_cast<std::size_t>(film.frames));
    std::iota(frames.begin(), frames.end(), 1);
    return frames;
  }

  static std::vector<Picture> Read(const Film& film, const std::vector<int>& frames) {
    FilmReader reader(film, frames);
    PamReader pam(reader.Stream(), "film");
    std::vector<Picture> pictures;
    while (std::optional<Picture> picture = pam.Next()) {
      pictures.push_back(*picture);
    }
    reader.Finish(true);
    return pictures;
  }

  // Every frame of the one in the other.
  Film Copy(const Film& from, const std::string& name) {
    FilmWriter writer(folder / name, from, true, false);
    for (const Picture& picture : Read(from, All(from))) {
      glimmerhost::WritePam(picture, writer.Stream(), name);
    }
    writer.Finish();
    return LookIntoFilm(folder / name);
  }

  lx_test::ScratchFolder folder;
};

const std::string kTagged =
    " -frames:v 5 -vf "
    "setparams=range=tv:colorspace=bt709:color_primaries=bt709:color_trc=bt709,format=yuv422p10le "
    "-colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv -c:v prores_ks "
    "-profile:v hq ";

TEST_F(Films, SayWhatTheyAre) {
  const Film film = LookIntoFilm(Make("a.mov", kTagged));
  EXPECT_EQ(64, film.width);
  EXPECT_EQ(48, film.height);
  EXPECT_EQ(5, film.frames);
  EXPECT_EQ("24000/1001", film.rate);
  EXPECT_FALSE(film.rateVaries);
  EXPECT_FALSE(film.hasAlpha);
  EXPECT_FALSE(film.isRgb);
  EXPECT_FALSE(film.hasAllColour);
  EXPECT_FALSE(film.hasSound);
  EXPECT_EQ((glimmerhost::FilmColours{"tv", "bt709", "bt709", "bt709"}), film.colours);
}

// A container that does not count its frames.
TEST_F(Films, AreCountedWhereTheyDoNotSayIt) {
  const Film film = LookIntoFilm(
      Make("a.mkv", "-frames:v 7 -vf setsar=4/3 -pix_fmt gbrap16le -c:v ffv1 -level 3"));
  EXPECT_EQ(7, film.frames);
  EXPECT_TRUE(film.hasAlpha);
  EXPECT_TRUE(film.isRgb);
  EXPECT_EQ(4, film.pixelAspect.first);
  EXPECT_EQ(3, film.pixelAspect.second);
}

TEST_F(Films, KeepRateColoursAndPixelAspectInTheirSuccessor) {
  const Film film = LookIntoFilm(Make("a.mov", kTagged));
  const Film copy = Copy(film, "b.mov");
  EXPECT_EQ(film.frames, copy.frames);
  EXPECT_EQ(film.rate, copy.rate);
  EXPECT_EQ(film.colours, copy.colours);

  Film wide = film;
  wide.pixelAspect = {4, 3};
  const Film stretched = Copy(wide, "c.mov");
  EXPECT_EQ(4, stretched.pixelAspect.first);
  EXPECT_EQ(3, stretched.pixelAspect.second);
}

// FFV1 of RGB loses nothing, so what differs was lost between the two programs.
TEST_F(Films, KeepEverySampleWhereTheirCodingDoes) {
  const Film film =
      LookIntoFilm(Make("a.mkv", "-frames:v 4 -pix_fmt gbrap16le -c:v ffv1 -level 3"));
  const Film copy = Copy(film, "b.mkv");
  const std::vector<Picture> before = Read(film, All(film));
  const std::vector<Picture> after = Read(copy, All(copy));
  ASSERT_EQ(4U, before.size());
  ASSERT_EQ(4U, after.size());
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(before[i].samples, after[i].samples) << i;
  }
  EXPECT_NE(before[0].samples, before[1].samples);
}

// An even picture: what is left is rounding to 10 bits, and a wrong matrix or range would be far
// off.
TEST_F(Films, KeepColoursThroughLumaAndDifferences) {
  for (const std::string matrix : {"bt709", "smpte170m", ""}) {
    const std::string tag = matrix.empty() ? "" : ":colorspace=" + matrix;
    const Film film = LookIntoFilm(
        Make("a" + matrix + ".mov",
             "-frames:v 1 -vf scale=out_color_matrix=" + (matrix.empty() ? "smpte170m" : matrix) +
                 ",format=yuv444p10le,setparams=range=tv" + tag + " -c:v prores_ks -profile:v 4444",
             "color=c=0xC86432:s=64x48:r=25,format=gbrp"));
    ASSERT_EQ(matrix, film.colours.matrix);
    const Film copy = Copy(film, "b" + matrix + ".mov");
    EXPECT_EQ(matrix, copy.colours.matrix);
    for (const Film& one : {film, copy}) {
      const Picture picture = Read(one, {1}).at(0);
      const int expected[] = {0xC8 * 257, 0x64 * 257, 0x32 * 257};
      for (std::size_t c = 0; c < 3; ++c) {
        EXPECT_NEAR(expected[c], picture.samples[4 * 1000 + c], 200) << matrix << c;
      }
    }
  }
}

TEST_F(Films, GiveTheFramesThatAreAskedForAlone) {
  const Film film = LookIntoFilm(Make("a.mov", "-frames:v 9 -c:v prores_ks"));
  const std::vector<Picture> all = Read(film, All(film));
  const std::vector<Picture> some = Read(film, {2, 5, 6, 9});
  ASSERT_EQ(4U, some.size());
  EXPECT_EQ(all[1].samples, some[0].samples);
  EXPECT_EQ(all[4].samples, some[1].samples);
  EXPECT_EQ(all[5].samples, some[2].samples);
  EXPECT_EQ(all[8].samples, some[3].samples);
  for (std::size_t i = 1; i < all.size(); ++i) {
    EXPECT_NE(all[i - 1].samples, all[i].samples) << i;
  }
}

TEST_F(Films, TakeTheirSoundAlongWhereTheyAreWhole) {
  const Film film = LookIntoFilm(
      Make("a.mov", "-f lavfi -i sine -t 0.3 -c:v prores_ks -c:a pcm_s16le -timecode 01:00:00:00"));
  EXPECT_TRUE(film.hasSound);
  for (const std::string name : {"b.mov", "b.mp4", "b.mkv"}) {
    EXPECT_TRUE(Copy(film, name).hasSound) << name;
  }
  const lx_test::Outcome tags = lx_test::RunChild(
      "/bin/sh", {"-c", "exec ffprobe -v error -show_entries stream_tags=timecode '" +
                            (folder / "b.mov").string() + "'"});
  EXPECT_NE(std::string::npos, tags.text.find("01:00:00:00")) << tags.text;
  FilmWriter part(folder / "part.mov", film, false, false);
  glimmerhost::WritePam(Read(film, {1}).at(0), part.Stream(), "part");
  part.Finish();
  EXPECT_FALSE(LookIntoFilm(folder / "part.mov").hasSound);
}

// Shown as far as they go, damaged frames would pass for good ones.
TEST_F(Films, FailWhereTheyAreDamaged) {
  const fs::path file = Make("a.mkv", "-frames:v 9 -c:v ffv1 -level 3 -slicecrc 1");
  const Film film = LookIntoFilm(file);
  std::string bytes;
  {
    std::ifstream in(file, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(in), {});
  }
  std::string zeroed = bytes;
  zeroed.replace(bytes.size() / 2, 400, 400, '\0');
  std::ofstream(file, std::ios::binary) << zeroed;
  try {
    EXPECT_NE(9U, Read(film, All(film)).size());
    FAIL() << "it was read";
  } catch (const glimmerhost::Failure& fault) {
    EXPECT_EQ(0U, std::string(fault.what()).find(file.string() + ": ")) << fault.what();
  }
  std::ofstream(folder / "none.mov") << "no film";
  EXPECT_THROW(LookIntoFilm(folder / "none.mov"), glimmerhost::Failure);
  EXPECT_THROW(LookIntoFilm(folder / "no.mov"), glimmerhost::MissingInput);
}

TEST_F(Films, LeaveNothingWhereTheyAreNotFinished) {
  const Film film = LookIntoFilm(Make("a.mov", "-frames:v 2 -c:v prores_ks"));
  const int files = folder.FileCount();
  { const FilmWriter writer(folder / "b.mov", film, true, false); }
  EXPECT_EQ(files, folder.FileCount());
  EXPECT_THROW(FilmWriter(folder / "a.mov", film, true, false), glimmerhost::Failure);
  EXPECT_THROW(FilmWriter(folder / "b.avi", film, true, false), glimmerhost::UsageError);
  FilmWriter empty(folder / "b.mov", film, true, false);
  EXPECT_THROW(empty.Finish(), glimmerhost::Failure);
}

TEST(FilmPrograms, AreAskedForWhereTheyAreNotThere) {
  const std::string before = std::getenv("PATH");
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "a.mov") << "x";
  setenv("PATH", folder.Path().c_str(), 1);
  try {
    LookIntoFilm(folder / "a.mov");
    ADD_FAILURE();
  } catch (const glimmerhost::MissingInput& fault) {
    EXPECT_EQ((folder / "a.mov").string() +
                  ": films need the program ffprobe, which is not on this machine (Debian's "
                  "package ffmpeg has it)",
              fault.what());
  }
  setenv("PATH", before.c_str(), 1);
}

}  // namespace
