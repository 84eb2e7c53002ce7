// SPDX-License-Identifier: BSD-3-Clause
// A loader whose requests for memory are refused says so, or has the right frame; and it goes on.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/pictures/picture_file.h"
#include "host/viewer/clip/frame_loader.h"
#include "tests/host/viewer/refusals/each_refused.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

void Write(const std::filesystem::path& file, std::uint16_t sample) {
  Picture picture;
  picture.width = 8;
  picture.height = 4;
  picture.samples.assign(picture.PixelCount() * 4, sample);
  PictureOutput(file, false).Write(picture, {});
}

class RefusedFrames : public testing::Test {
 public:
  RefusedFrames() {
    Write(folder / "shot.0001.png", 1000);
    Write(folder / "shot.0002.png", 2000);
    Write(folder / "disc.png", 3000);
    clip = std::make_shared<const ViewedClip>((folder / "shot.####.png").string());
    reading.spread = (folder / "disc.png").string();
  }

  // Until the loader has nothing to do.
  void Finish() const {
    while (!loader->IsIdle()) {
      std::this_thread::yield();
    }
  }

  // The answer to a request, of which nothing is refused from the moment it is asked for.
  std::optional<FrameAnswer> Get(int frame) {
    loader->Ask({clip, reading, frame, 0});
    Finish();
    return loader->Fetch();
  }

  static void ExpectFrame(const FrameAnswer& answer, std::uint16_t sample, long n) {
    ASSERT_NE(nullptr, answer.loaded) << n << ": " << answer.fault;
    EXPECT_EQ("", answer.fault) << n;
    EXPECT_EQ(sample, answer.loaded->picture->samples.at(0)) << n;
    EXPECT_EQ(sample, answer.loaded->source->buffer()[0]) << n;
    ASSERT_TRUE(answer.loaded->spread) << n;
    EXPECT_EQ(3000, answer.loaded->spread->buffer()[0]) << n;
  }

  // Asks for the first frame, with the second behind it, and then for the second.
  bool Play(long n) {
    bool wasRefused = false;
    bool wasAsked = false;
    {
      const lx_test::RefusedNew refused(n);
      try {
        loader = std::make_unique<FrameLoader>(std::uint64_t{1} << 20, [] {});
        loader->Ask({clip, reading, 1, 1});
        wasAsked = true;
      } catch (const std::bad_alloc&) {
      }
      if (loader) {
        Finish();
      }
      wasRefused = refused.WasRefused();
    }
    if (wasAsked) {
      const std::optional<FrameAnswer> answer = loader->Fetch();
      EXPECT_TRUE(answer) << n;
      if (answer && answer->loaded) {
        ExpectFrame(*answer, 1000, n);
      } else if (answer) {
        EXPECT_NE("", answer->fault) << n;
        EXPECT_TRUE(wasRefused) << n;
      }
      EXPECT_EQ("", loader->Stage()) << n;
    }
    if (loader) {
      ExpectFrame(Get(2).value(), 2000, n);
      ExpectFrame(Get(1).value(), 1000, n);
    }
    loader.reset();
    return wasRefused;
  }

  lx_test::ScratchFolder folder;
  std::shared_ptr<const ViewedClip> clip;
  FrameReading reading;
  std::unique_ptr<FrameLoader> loader;
};

TEST_F(RefusedFrames, AreFaultsAndTheNextOnesAreRead) {
  const long count = viewer_test::RefuseEach([this](long n) { return Play(n); });
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(count, 50);
}

// What cannot be read is told, though that takes memory, too.
TEST_F(RefusedFrames, TellOfABrokenFileOrThatThereIsNoMemory) {
  std::filesystem::resize_file(folder / "shot.0001.png", 60);
  const long count = viewer_test::RefuseEach([this](long n) {
    loader = std::make_unique<FrameLoader>(std::uint64_t{1} << 20, [] {});
    bool wasRefused = false;
    bool wasAsked = false;
    {
      const lx_test::RefusedNew refused(n);
      try {
        loader->Ask({clip, reading, 1, 0});
        wasAsked = true;
      } catch (const std::bad_alloc&) {
      }
      Finish();
      wasRefused = refused.WasRefused();
    }
    if (wasAsked) {
      const std::optional<FrameAnswer> answer = loader->Fetch();
      EXPECT_TRUE(answer && !answer->loaded && !answer->fault.empty()) << n;
    }
    ExpectFrame(Get(2).value(), 2000, n);
    loader.reset();
    return wasRefused;
  });
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(count, 10);
}

}  // namespace
}  // namespace glimmerhost
