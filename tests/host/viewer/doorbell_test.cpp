// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/support/doorbell.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <functional>
#include <memory>
#include <thread>

namespace glimmerhost {
namespace {

TEST(Doorbell, IsHeardOnItsOwnThreadOnceForRingsInARow) {
  const Doorbell bell;
  QSignalSpy rung(&bell, &Doorbell::Rung);
  std::thread::id heardOn;
  QObject::connect(&bell, &Doorbell::Rung, [&] { heardOn = std::this_thread::get_id(); });
  std::thread([ring = bell.Ringer()] {
    ring();
    ring();
    ring();
  }).join();
  EXPECT_EQ(rung.count(), 0);
  ASSERT_TRUE(rung.wait());
  EXPECT_EQ(rung.count(), 1);
  EXPECT_EQ(heardOn, std::this_thread::get_id());
}

TEST(Doorbell, RingsAgainAfterItWasHeard) {
  const Doorbell bell;
  QSignalSpy rung(&bell, &Doorbell::Rung);
  bell.Ringer()();
  ASSERT_TRUE(rung.wait());
  bell.Ringer()();
  ASSERT_TRUE(rung.wait());
  EXPECT_EQ(rung.count(), 2);
}

TEST(Doorbell, MayBeRungWhenItIsGone) {
  auto bell = std::make_unique<Doorbell>();
  const std::function<void()> ring = bell->Ringer();
  bell.reset();
  ring();
}

}  // namespace
}  // namespace glimmerhost
