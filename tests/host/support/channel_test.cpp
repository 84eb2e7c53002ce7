// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/channel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

using glimmerhost::Channel;

TEST(Channel, HandsOverInOrder) {
  Channel<int> channel(2);
  std::vector<int> taken;
  std::thread taker([&] {
    while (const std::optional<int> thing = channel.Take()) {
      taken.push_back(*thing);
    }
  });
  std::vector<int> put;
  for (int i = 0; i < 1000; ++i) {
    EXPECT_TRUE(channel.Put(i));
    put.push_back(i);
  }
  channel.Close();
  taker.join();
  EXPECT_EQ(put, taken);
}

TEST(Channel, HoldsNoMoreThanItsCapacity) {
  Channel<int> channel(2);
  std::atomic<int> put = 0;
  std::thread putter([&] {
    for (int i = 0; i < 5; ++i) {
      channel.Put(i);
      ++put;
    }
  });
  while (put < 2) {
    std::this_thread::yield();
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(2, put);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(i, channel.Take());
  }
  putter.join();
}

TEST(Channel, GivesWhatWaitsOnceItIsClosed) {
  Channel<int> channel(2);
  channel.Put(7);
  channel.Close();
  EXPECT_FALSE(channel.Put(8));
  EXPECT_EQ(7, channel.Take());
  EXPECT_FALSE(channel.Take());
}

TEST(Channel, ForgetsWhatWaitsOnceItIsAbandoned) {
  Channel<std::shared_ptr<int>> channel(1);
  const auto thing = std::make_shared<int>(7);
  channel.Put(thing);
  std::thread putter([&] { EXPECT_FALSE(channel.Put(nullptr)); });
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  channel.Abandon();
  putter.join();
  EXPECT_EQ(1, thing.use_count());
  EXPECT_FALSE(channel.Take());
}

}  // namespace
