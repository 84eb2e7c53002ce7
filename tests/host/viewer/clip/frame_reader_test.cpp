// SPDX-License-Identifier: BSD-3-Clause
// A frame in the window is what a render would give the effect.
#include "host/viewer/clip/frame_reader.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/file_metadata.h"
#include "host/render/loader.h"
#include "host/support/failure.h"
#include "tests/host/render/shot_stage.h"

namespace glimmerhost {
namespace {

using Samples = std::vector<std::uint16_t>;

Samples SamplesOf(const quantel::cPtr<FrameImage>& image) {
  if (!image) {
    return {};
  }
  const quantel::cSize2 size = image->size();
  return {image->buffer(), image->buffer() + std::ptrdiff_t{4} * size.first * size.second};
}

// Another colour in each pixel, half transparent.
Picture Colourful(int width, int height) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.alpha = Alpha::kStraight;
  for (int i = 0; i < width * height; ++i) {
    for (const int sample : {1000 * i, 65535 - 900 * i, 500 * i + 7, 32768}) {
      picture.samples.push_back(static_cast<std::uint16_t>(sample));
    }
  }
  return picture;
}

class FrameReaders : public render_test::ShotStage {
 public:
  FrameReaders() {
    settings.reading.precision = Precision::kByFile;
    Use("shape = \"image\"\nradius-psf1 = \"1px\"\nradius-psf2 = \"1px\"");
  }

  std::string Write(const std::string& name, const Picture& picture) const {
    PictureOutput(folder / name, false).Write(picture, 0);
    return (folder / name).string();
  }

  // What a render's loader makes of the same files.
  render_test::Works Render(const std::string& input, const std::string& spread) {
    plan.files = {{1, input, folder / "out.png", spread}};
    Loader loader(page, settings, plan, *lx::FindFootprint("fast"), nullptr, nullptr);
    render_test::FrameChannel loaded(render_test::kRoom);
    loader.Run(&loaded);
    return TakeAll(&loaded);
  }

  void ExpectAsRendered(const std::string& input, const FrameReading& reading) {
    settings.premultiplied = reading.premultiplied;
    settings.pixelAspect = reading.pixelAspect;
    const render_test::Works works = Render(input, reading.spread);
    ASSERT_EQ("", works[0]->report.fault);
    const FrameInput& expected = works[0]->input;

    const auto read = reader.Read(ViewedClip(input), reading, 1);

    EXPECT_EQ(works[0]->picture.samples, read->picture->samples);
    EXPECT_EQ(works[0]->picture.floats, read->picture->floats);
    EXPECT_EQ(works[0]->picture.alpha, read->picture->alpha);
    EXPECT_EQ(SamplesOf(expected.source), SamplesOf(read->source));
    EXPECT_EQ(expected.pixelAspect.first, read->pixelAspect.first);
    EXPECT_EQ(expected.pixelAspect.second, read->pixelAspect.second);
    if (!reading.spread.empty()) {
      EXPECT_EQ(SamplesOf(expected.spread), SamplesOf(read->spread));
    }
  }

  FrameReader reader;
};

TEST_F(FrameReaders, MultiplyStraightAlphaInUnlessTheLookSaysAsIs) {
  const std::string file = Write("a.png", Colourful(4, 2));
  const ViewedClip clip(file);

  const auto multiplied = reader.Read(clip, {}, 1);
  const auto asIs = reader.Read(clip, {"", false, {0, 0}}, 1);

  // The second pixel: 1000 * 32768 / 65535 is 500.008.
  EXPECT_EQ(500, multiplied->picture->samples[4]);
  EXPECT_EQ(1000, asIs->picture->samples[4]);
  // Blue, green, red at the border.
  EXPECT_EQ(500, SamplesOf(multiplied->source)[6]);
  ExpectAsRendered(file, {});
  ExpectAsRendered(file, {"", false, {0, 0}});
}

TEST_F(FrameReaders, HaveThePixelAspectOfTheLookOrElseOfTheFile) {
  // Three dots across where there are four down: pixels are wide.
  FileMetadata metadata;
  metadata.format = "png";
  metadata.resolution = {3.0, 4.0, DotsPer::kNothing};
  Picture picture = Colourful(4, 2);
  picture.metadata = std::make_shared<const FileMetadata>(metadata);
  const std::string file = Write("a.png", picture);

  EXPECT_EQ(4, reader.Read(ViewedClip(file), {}, 1)->pixelAspect.first);
  ExpectAsRendered(file, {});
  ExpectAsRendered(file, {"", true, {2, 1}});
}

TEST_F(FrameReaders, CentreTheSecondClipAndPremultiplyItAsTheFrame) {
  const std::string file = Write("a.png", Colourful(6, 4));
  const std::string spread = Write("disc.png", Colourful(3, 3));

  ExpectAsRendered(file, {spread, true, {0, 0}});
  ExpectAsRendered(file, {spread, false, {0, 0}});
}

TEST_F(FrameReaders, TakeTheSecondClipsFrameOfTheSameNumber) {
  for (const int frame : {3, 4}) {
    Write("shot.000" + std::to_string(frame) + ".png", render_test::EvenPicture(100));
    Write("disc.0" + std::to_string(frame) + ".png",
          render_test::EvenPicture(static_cast<std::uint16_t>(frame)));
  }
  const ViewedClip clip((folder / "shot.####.png").string());
  const FrameReading reading{(folder / "disc.##.png").string(), true, {0, 0}};

  EXPECT_EQ(3, SamplesOf(reader.Read(clip, reading, 3)->spread)[0]);
  EXPECT_EQ(4, SamplesOf(reader.Read(clip, reading, 4)->spread)[0]);
}

TEST_F(FrameReaders, ShareAStillSecondClipAmongFrames) {
  for (const char* name : {"shot.1.png", "shot.2.png"}) {
    Write(name, render_test::EvenPicture(100));
  }
  const ViewedClip clip((folder / "shot.@.png").string());
  const FrameReading reading{Write("disc.png", render_test::EvenPicture(9)), true, {0, 0}};

  EXPECT_EQ(reader.Read(clip, reading, 1)->spread.Object(),
            reader.Read(clip, reading, 2)->spread.Object());
}

TEST_F(FrameReaders, SettleAnotherSecondClipForTheSamePicture) {
  const ViewedClip clip(Write("a.png", render_test::EvenPicture(100)));
  const auto before = reader.Read(clip, {}, 1);
  const std::string spread = Write("disc.png", render_test::EvenPicture(9));

  const auto after = reader.Settle(*before, {spread, true, {2, 1}});

  EXPECT_EQ(before->picture, after->picture);
  EXPECT_EQ(before->source.Object(), after->source.Object());
  EXPECT_EQ(9, SamplesOf(after->spread)[0]);
  EXPECT_EQ(2, after->pixelAspect.first);
  EXPECT_FALSE(before->spread);
  EXPECT_FALSE(reader.Settle(*after, {})->spread);
}

TEST_F(FrameReaders, FailForAFrameThatIsMissingOrBroken) {
  Write("shot.0001.png", render_test::EvenPicture(100));
  std::ofstream(folder / "shot.0003.png") << "no picture";
  const ViewedClip clip((folder / "shot.####.png").string());

  EXPECT_THROW(reader.Read(clip, {}, 2), MissingInput);
  EXPECT_THROW(reader.Read(clip, {}, 3), Failure);
  EXPECT_EQ(100, reader.Read(clip, {}, 1)->picture->samples[0]);
}

TEST_F(FrameReaders, KeepFloatsAsTheFileHasThemAndHaveNothingForTheModule) {
  Picture picture;
  picture.width = 2;
  picture.height = 1;
  picture.alpha = Alpha::kPremultiplied;
  picture.floats = {4.5F, 0.25F, -0.5F, 0.5F, 0.125F, 1.0F, 2.0F, 1.0F};
  Coding coding(32);
  coding.floats = true;
  PictureOutput(folder / "a.exr", false).Write(picture, coding);
  const std::string file = (folder / "a.exr").string();

  const auto read = reader.Read(ViewedClip(file), {}, 1);

  EXPECT_EQ(picture.floats, read->picture->floats);
  EXPECT_FALSE(read->source);
  ExpectAsRendered(file, {});
  ExpectAsRendered(file, {Write("disc.png", Colourful(3, 3)), true, {3, 2}});
}

}  // namespace
}  // namespace glimmerhost
