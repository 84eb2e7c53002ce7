// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/player.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <string>
#include <vector>

#include "tests/host/viewer/window/viewing_stage.h"

namespace glimmerhost {
namespace {

// Ten frames, of which the first is shown, and a clock that stands.
class PlayerOfTen : public testing::Test, public viewer_test::ViewingStage {
 public:
  PlayerOfTen() {
    for (int frame = 1; frame <= 10; ++frame) {
      viewer_test::Write(folder / ("shot." + std::to_string(1000 + frame) + ".png"),
                         viewer_test::Ramp(16, 8, frame));
    }
    Open((folder / "shot.####.png").string());
    EXPECT_TRUE(Settle());
    player.SetRate(10.0);
  }

  // To that time, with everything shown by then that was asked for before.
  void At(std::int64_t milliseconds) {
    ASSERT_TRUE(Settle());
    now = milliseconds;
    player.Tick();
  }

  std::int64_t now = 5000;
  Player player{&viewing, nullptr, [this] { return now; }};
};

TEST_F(PlayerOfTen, ShowsTheFrameWhoseTimeHasCome) {
  player.Play(true);
  At(5099);
  EXPECT_EQ(viewing.Frame(), 1001);
  At(5100);
  EXPECT_EQ(viewing.Frame(), 1002);
  At(5200);
  EXPECT_EQ(viewing.Frame(), 1003);
  EXPECT_EQ(player.Dropped(), 0);
}

TEST_F(PlayerOfTen, CountsFramesThatAreLeftOut) {
  QSignalSpy dropped(&player, &Player::DroppedChanged);
  player.Play(true);
  At(5400);
  EXPECT_EQ(viewing.Frame(), 1005);
  EXPECT_EQ(player.Dropped(), 3);
  EXPECT_EQ(dropped.back().front().toInt(), 3);
}

TEST_F(PlayerOfTen, BeginsAnewBehindTheLastFrame) {
  player.Play(true);
  At(5900);
  EXPECT_EQ(viewing.Frame(), 1010);
  At(6000);
  EXPECT_EQ(viewing.Frame(), 1001);
  EXPECT_EQ(player.Dropped(), 8);
}

TEST_F(PlayerOfTen, WaitsForAFrameThatIsNotThereYet) {
  player.Play(true);
  At(5100);
  ASSERT_EQ(viewing.State(), ShownState::kWorking);
  now = 5300;
  player.Tick();
  EXPECT_EQ(viewing.Frame(), 1002);
  At(5300);
  EXPECT_EQ(viewing.Frame(), 1004);
  EXPECT_EQ(player.Dropped(), 1);
}

TEST_F(PlayerOfTen, BeginsWithTheFrameThatIsShown) {
  viewing.SetFrame(1008);
  player.Play(true);
  At(5200);
  EXPECT_EQ(viewing.Frame(), 1010);
}

TEST_F(PlayerOfTen, DoesNotPlayOneFrame) {
  Open((folder / "shot.1003.png").string());
  ASSERT_TRUE(viewer_test::WaitUntil(&viewing, &Viewing::StateChanged, [this] {
    return !viewing.Clip()->IsSequence() && viewing.IsSettled();
  }));
  player.Play(true);
  EXPECT_FALSE(player.IsPlaying());
}

}  // namespace
}  // namespace glimmerhost
