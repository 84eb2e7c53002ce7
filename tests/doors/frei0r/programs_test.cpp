// SPDX-License-Identifier: BSD-3-Clause
// The plug-ins in ffmpeg and melt, frame by frame against the library. Frames go in and come out as
// they are, so that nothing is lost on the way.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/doors/frei0r/library_frames.h"
#include "tests/support/child_program.h"
#include "tests/support/scratch_folder.h"

namespace {

using lx_test::LibraryFrame;
using lx_test::Lights;
using lx_test::Pixels;

constexpr int kWidth = 320;
constexpr int kHeight = 48;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

class Frei0rPrograms : public testing::Test {
 protected:
  // One frame more than is looked at: melt does without the last one of such a file.
  void SetUp() override {
    for (const std::string program : {"ffmpeg", "melt"}) {
      if (lx_test::RunChild("/bin/sh", {"-c", "command -v " + program}).code != 0) {
        GTEST_SKIP() << program << " is not installed";
      }
    }
    for (unsigned i = 0; i < 8; ++i) {
      frames_.push_back(Lights(kWidth, kHeight, i, true));
    }
    WriteFilm("film", frames_);
    std::ofstream(folder_ / "profile") << "description=strip\nframe_rate_num=25\n"
                                          "frame_rate_den=1\nwidth=320\nheight=48\nprogressive=1\n"
                                          "sample_aspect_num=1\nsample_aspect_den=1\n"
                                          "display_aspect_num=20\ndisplay_aspect_den=3\n"
                                          "colorspace=709\n";
  }

  // NAME.nut, a film of frames as they are.
  void WriteFilm(const std::string& name, const std::vector<Pixels>& frames) {
    std::ofstream raw(folder_ / (name + ".rgba"), std::ios::binary);
    for (const Pixels& frame : frames) {
      raw.write(reinterpret_cast<const char*>(frame.data()),
                static_cast<std::streamsize>(4 * frame.size()));
    }
    raw.close();
    Run("ffmpeg -v error -nostdin -f rawvideo -pix_fmt rgba -s 320x48 -r 25 -i " + name +
        ".rgba -c:v rawvideo " + name + ".nut");
  }

  // In the folder, with the plug-ins of this build.
  void Run(const std::string& command) {
    const lx_test::Outcome outcome = lx_test::RunChild(
        "/bin/sh", {"-c", "cd '" + folder_.Path().string() + "' && exec " + command},
        {{"FREI0R_PATH", PLUGINS}});
    ASSERT_EQ(0, outcome.code) << command << "\n" << outcome.text;
  }

  std::vector<Pixels> Filtered(const std::string& filter) {
    Run("ffmpeg -v error -nostdin -i film.nut -vf '" + filter +
        "' -f rawvideo -pix_fmt rgba out.rgba");
    return Out();
  }

  // What melt makes of its arguments. melt 7.12 now and then loses a race with itself when it
  // starts, with plug-ins or without: it writes nothing then, and ends well or waits for ever. Such
  // a run counts for none; one that has written is the last.
  std::vector<Pixels> Played(const std::string& arguments, const std::string& realTime = "-1") {
    std::ofstream(folder_ / "play.sh")
        << "for attempt in 1 2 3 4 5 6 7 8 9 10 11 12\ndo\n  timeout -s KILL 5 melt -silent "
           "-profile "
           "profile "
        << arguments
        << " -consumer avformat:out.rgba f=rawvideo vcodec=rawvideo pix_fmt=rgba "
           "mlt_image_format=rgba an=1 real_time="
        << realTime << "\n  code=$?\n  [ ! -s out.rgba ] || exit $code\ndone\nexit 1\n";
    Run("rm -f out.rgba");
    Run("sh play.sh");
    return Out();
  }

  std::vector<Pixels> Out() {
    std::ifstream file(folder_ / "out.rgba", std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    EXPECT_EQ(0U, bytes.size() % (4 * kPixels));
    std::vector<Pixels> frames;
    for (std::size_t at = 0; at + 4 * kPixels <= bytes.size(); at += 4 * kPixels) {
      frames.emplace_back(kPixels);
      std::memcpy(frames.back().data(), bytes.data() + at, 4 * kPixels);
    }
    return frames;
  }

  lx_test::ScratchFolder folder_;
  std::vector<Pixels> frames_;
};

glimmerblur_look Round(double radius, double emphasis) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = GLIMMERBLUR_ELLIPSE;
  look.radius_x = look.radius_y = radius;
  look.emphasis = emphasis;
  return look;
}

TEST_F(Frei0rPrograms, FfmpegMakesTheFramesOfTheLibrary) {
  glimmerblur_look look = Round(6.4, 8.0);
  look.shape = GLIMMERBLUR_POLYGON;
  look.sides = 6;

  const std::vector<Pixels> out =
      Filtered("frei0r=filter_name=glimmerblur:filter_params=0.2|0.4|0.6");

  ASSERT_EQ(frames_.size(), out.size());
  for (std::size_t i = 0; i < out.size(); ++i) {
    EXPECT_EQ(LibraryFrame(look, frames_[i], kWidth, kHeight), out[i]) << "frame " << i;
  }
}

// From the first keyframe to the second in a straight line, and on from there.
TEST_F(Frei0rPrograms, MeltMovesTheRadiusByKeyframes) {
  const std::vector<Pixels> out = Played("film.nut -attach frei0r.glimmerblur 0='0=0.01;5=0.2'");

  ASSERT_LE(7U, out.size());
  EXPECT_EQ(frames_[0], out[0]) << "a radius of 0.32 pixels leaves the frame as it is";
  const double radii[] = {0.32, 1.536, 2.752, 3.968, 5.184, 6.4, 6.4};
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(LibraryFrame(Round(radii[i], 0.0), frames_[i], kWidth, kHeight), out[i])
        << "frame " << i;
  }
}

TEST_F(Frei0rPrograms, MeltMakesTheSameFramesOnSeveralThreads) {
  const std::string arguments = "film.nut -attach frei0r.glimmerblur 0='0=0.01;5=0.2' 1=0.5";

  EXPECT_EQ(Played(arguments), Played(arguments, "-4"));
}

TEST_F(Frei0rPrograms, MeltTakesTheApertureFromTheUpperTrack) {
  Pixels aperture = Lights(kWidth, kHeight, 99, true);
  WriteFilm("aperture", std::vector<Pixels>(8, aperture));

  const std::vector<Pixels> out = Played(
      "film.nut -track aperture.nut -transition frei0r.glimmerblur_aperture a_track=0 "
      "b_track=1 0=0.25 1=0.4 2=0.5");

  ASSERT_LE(7U, out.size());
  glimmerblur_look look = Round(0.0, 8.0);
  look.shape = GLIMMERBLUR_PICTURE;
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(LibraryFrame(look, frames_[i], kWidth, kHeight, GLIMMERBLUR_STRAIGHT, &aperture,
                           {160.0, 24.0, 4.0, 8.0}),
              out[i])
        << "frame " << i;
  }
}

}  // namespace
