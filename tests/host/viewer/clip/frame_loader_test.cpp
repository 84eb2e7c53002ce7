// SPDX-License-Identifier: BSD-3-Clause
// Which frames are read, in which order, and what becomes of those that nobody wants any more.
#include "host/viewer/clip/frame_loader.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

using Frames = std::vector<int>;

// A frame of 10 x 10 pixels takes 800 bytes and, with what the module is given, 1600.
constexpr std::uint64_t kFrameBytes = 1600;

std::shared_ptr<const LoadedFrame> MadeFrame(int frame) {
  Picture picture;
  picture.width = 10;
  picture.height = 10;
  picture.samples.assign(400, static_cast<std::uint16_t>(frame));
  auto made = std::make_shared<LoadedFrame>();
  made->frame = frame;
  made->source = quantel::cPtr<FrameImage>(new FrameImage(picture));
  made->picture = std::make_shared<const Picture>(std::move(picture));
  return made;
}

// Reads nothing, and stands still before the frames that it is told to.
class Desk {
 public:
  // From the loader's thread.
  void Enter(int frame) {
    std::unique_lock lock(mutex_);
    begun_.push_back(frame);
    changed_.notify_all();
    changed_.wait(lock, [&] { return frame != heldBack_; });
  }

  // From the test's.
  void HoldBack(int frame) {
    const std::lock_guard lock(mutex_);
    heldBack_ = frame;
    changed_.notify_all();
  }
  void LetGo() { HoldBack(-1); }
  void WaitFor(int frame) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return !begun_.empty() && begun_.back() == frame; });
  }
  Frames Begun() {
    const std::lock_guard lock(mutex_);
    return begun_;
  }

  int settled = 0;    // how often a frame got another second clip
  int forgotten = 0;  // how often all was

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  Frames begun_;
  int heldBack_ = -1;
};

class DeskReading final : public FrameLoader::Reading {
 public:
  explicit DeskReading(Desk* desk) : desk_(desk) {}

  std::shared_ptr<const LoadedFrame> Read(const FrameRequest& /*request*/, int frame) override {
    desk_->Enter(frame);
    if (frame == 13) {
      throw Failure("shot.0013.png: broken");
    }
    return MadeFrame(frame);
  }
  std::shared_ptr<const LoadedFrame> Settle(const LoadedFrame& frame,
                                            const FrameRequest& /*request*/) override {
    ++desk_->settled;
    return std::make_shared<const LoadedFrame>(frame);
  }
  void Forget() override { ++desk_->forgotten; }

 private:
  Desk* desk_;
};

class FrameLoaders : public testing::Test {
 public:
  FrameLoaders() {
    for (int frame = 1; frame <= 20; ++frame) {
      const std::string number = std::to_string(frame);
      std::ofstream(folder / ("shot.00" + std::string(2 - number.size(), '0') + number + ".png"));
    }
    clip = std::make_shared<const ViewedClip>((folder / "shot.####.png").string());
  }

  // A cache for so many frames.
  void Start(std::uint64_t frames) {
    loader = std::make_unique<FrameLoader>(
        frames * kFrameBytes, [this] { Ring(); }, std::make_unique<DeskReading>(&desk));
  }

  void Ring() {
    const std::lock_guard lock(mutex);
    ++rings;
    rung.notify_all();
  }

  // The next answer, once there is one.
  FrameAnswer Next() {
    for (;;) {
      std::unique_lock lock(mutex);
      const int seen = rings;
      lock.unlock();
      if (std::optional<FrameAnswer> answer = loader->Fetch()) {
        return *answer;
      }
      lock.lock();
      rung.wait(lock, [&] { return rings != seen; });
    }
  }

  // The frame as it is asked for, and all that is read ahead of it.
  FrameAnswer Get(int frame, int direction = 0) {
    loader->Ask({clip, reading, frame, direction});
    FrameAnswer answer = Next();
    Finish();
    return answer;
  }

  // Until the loader has nothing to do.
  void Finish() const {
    while (!loader->IsIdle()) {
      std::this_thread::yield();
    }
  }

  lx_test::ScratchFolder folder;
  std::shared_ptr<const ViewedClip> clip;
  FrameReading reading;
  Desk desk;
  std::mutex mutex;
  std::condition_variable rung;
  int rings = 0;
  std::unique_ptr<FrameLoader> loader;  // the last: its thread uses all others
};

TEST_F(FrameLoaders, ReadTheNewestOfTheFramesThatWait) {
  Start(10);
  desk.HoldBack(1);
  loader->Ask({clip, reading, 1, 0});
  desk.WaitFor(1);
  loader->Ask({clip, reading, 2, 0});
  const std::uint64_t last = loader->Ask({clip, reading, 3, 0});
  desk.LetGo();
  Finish();

  const FrameAnswer answer = Next();

  EXPECT_EQ((Frames{1, 3}), desk.Begun());
  EXPECT_EQ(last, answer.serial);
  EXPECT_EQ(3, answer.loaded->frame);
}

TEST_F(FrameLoaders, AnswerAtOnceWithWhatTheCacheHas) {
  Start(10);
  Get(5);
  desk.HoldBack(6);
  loader->Ask({clip, reading, 6, 0});
  desk.WaitFor(6);

  // Though the thread stands still.
  loader->Ask({clip, reading, 5, 0});
  const std::optional<FrameAnswer> answer = loader->Fetch();
  desk.LetGo();
  Finish();

  ASSERT_TRUE(answer);
  EXPECT_EQ(5, answer->loaded->frame);
  EXPECT_EQ((Frames{5, 6}), desk.Begun());
  // The older request is ready after the newer one, and is no answer any more.
  EXPECT_FALSE(loader->Fetch());
}

TEST_F(FrameLoaders, KeepAsManyAsTheLimitLetsAndThoseThatSomebodyHolds) {
  Start(3);
  const FrameAnswer held = Get(1);
  for (const int frame : {2, 3, 4, 5}) {
    Get(frame);
  }

  EXPECT_EQ((Frames{1, 4, 5}), loader->Held(*clip));
  EXPECT_EQ(3 * kFrameBytes, loader->CacheBytes());
}

TEST_F(FrameLoaders, LetGoOfWhatWasAskedForLongestAgo) {
  Start(3);
  for (const int frame : {1, 2, 3, 1, 4}) {
    Get(frame);
  }

  EXPECT_EQ((Frames{1, 3, 4}), loader->Held(*clip));
}

TEST_F(FrameLoaders, LetGoOfFramesWhenTheLimitGetsSmaller) {
  Start(3);
  for (const int frame : {1, 2, 3}) {
    Get(frame);
  }
  loader->SetCacheLimit(kFrameBytes);

  EXPECT_EQ(Frames{3}, loader->Held(*clip));
}

TEST_F(FrameLoaders, ReadAheadAsFarAsTheCacheHasRoom) {
  Start(4);
  Get(5, 1);
  EXPECT_EQ((Frames{5, 6, 7, 8}), desk.Begun());
  EXPECT_EQ((Frames{5, 6, 7, 8}), loader->Held(*clip));

  Get(6, 1);
  EXPECT_EQ((Frames{5, 6, 7, 8, 9}), desk.Begun());
  EXPECT_EQ((Frames{6, 7, 8, 9}), loader->Held(*clip));
}

TEST_F(FrameLoaders, ReadAheadBackwardsUpToTheFirstFrame) {
  Start(10);
  Get(3, -1);

  EXPECT_EQ((Frames{3, 2, 1}), desk.Begun());
}

TEST_F(FrameLoaders, ReadNothingAheadWhileNothingPlays) {
  Start(10);
  Get(3, 0);

  EXPECT_EQ(Frames{3}, desk.Begun());
}

TEST_F(FrameLoaders, GiveUpReadingAheadForANewRequest) {
  Start(20);
  desk.HoldBack(3);
  loader->Ask({clip, reading, 1, 1});
  desk.WaitFor(3);
  loader->Ask({clip, reading, 18, 0});
  desk.LetGo();
  Finish();

  EXPECT_EQ((Frames{1, 2, 3, 18}), desk.Begun());
  // What was in hand is not lost.
  EXPECT_EQ((Frames{1, 2, 3, 18}), loader->Held(*clip));
}

TEST_F(FrameLoaders, SayWhatIsWrongWithAFrameAndGoOn) {
  Start(20);

  const FrameAnswer broken = Get(13);
  const FrameAnswer next = Get(14);

  EXPECT_EQ(nullptr, broken.loaded);
  EXPECT_EQ("shot.0013.png: broken", broken.fault);
  EXPECT_EQ(14, next.loaded->frame);
  EXPECT_EQ("", next.fault);
}

TEST_F(FrameLoaders, ReadAheadPastABrokenFrame) {
  Start(20);
  Get(12, 1);

  EXPECT_EQ((Frames{12, 13, 14, 15, 16, 17, 18, 19, 20}), desk.Begun());
}

TEST_F(FrameLoaders, SayWhatIsWaitedFor) {
  Start(20);
  desk.HoldBack(1);
  loader->Ask({clip, reading, 1, 1});
  desk.WaitFor(1);
  EXPECT_EQ("Reading shot.0001.png", loader->Stage());

  // Nobody waits for those ahead.
  desk.HoldBack(2);
  desk.WaitFor(2);
  EXPECT_EQ("", loader->Stage());
  desk.LetGo();
}

TEST_F(FrameLoaders, GiveAFrameAnotherSecondClipWithoutReadingItAgain) {
  Start(20);
  Get(1);
  reading.spread = "disc.png";
  Get(1);
  EXPECT_EQ(1, desk.settled);
  Get(1);
  EXPECT_EQ(1, desk.settled);
  EXPECT_EQ(Frames{1}, desk.Begun());

  // Another alpha is another picture.
  reading.premultiplied = false;
  Get(1);
  EXPECT_EQ((Frames{1, 1}), desk.Begun());
}

TEST_F(FrameLoaders, ReadAgainWhatTheyWereToldToForget) {
  Start(20);
  Get(1);
  loader->Forget();
  EXPECT_EQ(Frames{}, loader->Held(*clip));
  Get(1);

  EXPECT_EQ((Frames{1, 1}), desk.Begun());
  EXPECT_EQ(1, desk.forgotten);
}

TEST_F(FrameLoaders, DoNotKeepWhatWasBegunBeforeTheyForgot) {
  Start(20);
  desk.HoldBack(1);
  loader->Ask({clip, reading, 1, 0});
  desk.WaitFor(1);
  loader->Forget();
  desk.LetGo();
  Finish();

  EXPECT_EQ(Frames{}, loader->Held(*clip));
}

}  // namespace
}  // namespace glimmerhost
