// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fftw/transform_threads.h"

#include <fftw3.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "baselib/platform/platform.h"
#include "fftlib/backends/fftw/fft_calls.h"
#include "tests/support/platform_recorder.h"

namespace {

using lx_test::PlatformRecorder;

// The table of the system with a log, and no thread left behind.
class TransformThreads : public testing::Test {
 protected:
  ~TransformThreads() override { lx::EndTransformThreads(); }

  PlatformRecorder platform;
};

struct Job {
  std::atomic<int> runs{0};
  std::thread::id thread;
};

void* Run(char* record) {
  auto* job = reinterpret_cast<Job*>(record);
  ++job->runs;
  job->thread = std::this_thread::get_id();
  return nullptr;
}

template <std::size_t count>
void RunAll(std::array<Job, count>* jobs, void* (*work)(char*) = Run) {
  lx::RunTransformJobs(work, reinterpret_cast<char*>(jobs->data()), sizeof(Job),
                       static_cast<int>(count), nullptr);
}

template <std::size_t count>
void ExpectEachRan(const std::array<Job, count>& jobs, int times) {
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_EQ(times, jobs[i].runs) << i;
  }
}

TEST_F(TransformThreads, RunEachJobOnceAndTheLastOnTheCaller) {
  std::array<Job, 4> jobs;

  RunAll(&jobs);

  ExpectEachRan(jobs, 1);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NE(std::this_thread::get_id(), jobs[i].thread) << i;
  }
  EXPECT_EQ(std::this_thread::get_id(), jobs[3].thread);
}

TEST_F(TransformThreads, StayForTheNextJobs) {
  std::array<Job, 3> jobs;
  for (int i = 0; i < 50; ++i) {
    RunAll(&jobs);
  }

  ExpectEachRan(jobs, 50);
  EXPECT_EQ(2, platform.Count("begin thread"));
}

TEST_F(TransformThreads, AreAwaitedAtTheirEndAndComeAgain) {
  std::array<Job, 3> jobs;
  RunAll(&jobs);
  EXPECT_EQ(0, platform.Count("close"));

  lx::EndTransformThreads();

  EXPECT_EQ(2, platform.Count("close"));
  EXPECT_EQ(2, platform.ThreadCount("end thread"));
  RunAll(&jobs);
  ExpectEachRan(jobs, 2);
  EXPECT_EQ(4, platform.Count("begin thread"));
}

TEST_F(TransformThreads, LeaveJobsToTheCallerWhereThereIsNoneToBeHad) {
  std::array<Job, 3> jobs;
  platform.RefuseThread(1);
  RunAll(&jobs);
  ExpectEachRan(jobs, 1);
  EXPECT_EQ(std::this_thread::get_id(), jobs[0].thread);

  std::array<Job, 4> more;
  platform.RefuseEvent(2);  // one thread is there from before
  RunAll(&more);
  ExpectEachRan(more, 1);
  EXPECT_EQ(std::this_thread::get_id(), more[1].thread);
}

TEST_F(TransformThreads, RunJobsOfJobs) {
  static std::array<std::array<Job, 3>, 3> inner;
  for (auto& jobs : inner) {
    for (Job& job : jobs) {
      job.runs = 0;
    }
  }
  static std::atomic<std::size_t> next;
  next = 0;
  std::array<Job, 3> jobs;

  RunAll(&jobs, [](char*) -> void* {
    RunAll(&inner[next++]);
    return nullptr;
  });

  for (const auto& each : inner) {
    ExpectEachRan(each, 1);
  }
}

TEST_F(TransformThreads, ServeSeveralCallersAtOnce) {
  std::array<std::array<Job, 3>, 4> all;
  std::vector<std::thread> callers;
  for (auto& jobs : all) {
    callers.emplace_back([&jobs] {
      for (int i = 0; i < 200; ++i) {
        RunAll(&jobs);
      }
    });
  }
  for (std::thread& caller : callers) {
    caller.join();
  }

  for (const auto& jobs : all) {
    ExpectEachRan(jobs, 200);
  }
}

std::atomic<int> begun;

// A transform of noise, on three threads.
//   byItsOwn  the library's, which it takes where nobody gives it others
std::vector<double> Transform(bool byItsOwn) {
  lx::Platform table = lx::SystemPlatform();
  table.beginThread = [](std::uint32_t bytes, lx::ThreadStart start, void* argument,
                         std::uint32_t flags, std::uint32_t* id) {
    ++begun;
    return lx::SystemPlatform().beginThread(bytes, start, argument, flags, id);
  };
  const lx::ScopedPlatform scope(&table);
  constexpr int kSide = 256;
  const lx::FftCalls& calls = lx::LibraryFftCalls();
  EXPECT_NE(0, byItsOwn ? fftw_init_threads() : calls.initThreads());
  calls.planWithThreads(3);
  auto* spatial = static_cast<double*>(calls.allocate(kSide * kSide * sizeof(double)));
  constexpr std::size_t kSpectrum = kSide * (kSide / 2 + 1) * 2;
  auto* spectrum = static_cast<double(*)[2]>(calls.allocate(kSpectrum * sizeof(double)));
  auto* plan = calls.planForward(kSide, kSide, spatial, spectrum, lx::kPlanEstimate);
  for (std::uint32_t i = 0; i < kSide * kSide; ++i) {
    spatial[i] = i * 2654435761U >> 16U;
  }
  begun = 0;
  calls.execute(plan);
  const std::vector<double> result(&spectrum[0][0], &spectrum[0][0] + kSpectrum);
  calls.destroyPlan(plan);
  calls.release(spectrum);
  calls.release(spatial);
  calls.cleanupThreads();
  return result;
}

TEST(TransformThreadsOfTheLibrary, AreOursUntilTheEndAndGiveTheSameBits) {
  const auto byOurs = Transform(false);
  EXPECT_EQ(2, begun);
  const auto byItsOwn = Transform(true);
  EXPECT_EQ(0, begun);

  EXPECT_EQ(0, std::memcmp(byItsOwn.data(), byOurs.data(), byOurs.size() * sizeof(double)));
}

}  // namespace
