// SPDX-License-Identifier: BSD-3-Clause
// The module through the border, with each of its requests for memory, threads and files refused
// once. Each time a process of its own loads it, so that what is made once for a process is refused
// too, and so that what ends its process ends that one alone.
//
// FFTW makes some 2000 requests before its first frame, and ends the process where one is refused.
// So of that engine, and of those that take longer, some requests stand for all, unless
// REFUSALS_STRIDE of the environment says which: every one of that many.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <tuple>

#include "tests/border/module_path.h"
#include "tests/border/one_processor.h"
#include "tests/faults/module_life.h"
#include "tests/faults/refusals.h"
#include "tests/support/scratch_folder.h"

namespace {

using faults::Kind;
using faults::LifeFrame;
using faults::LifeLook;
using faults::LifeReport;
using faults::LifeStep;
using faults::Stage;
using faults::Told;

const LifeLook kLooks[] = {
    {"Circle", {{u"PRM_Shape", 0}, {u"PRM_RadiusX", 0.2}}, false},
    {"PolygonWithEmphasis",
     {{u"PRM_Shape", 2},
      {u"PRM_Match", 1},
      {u"PRM_RadiusX", 0.2},
      {u"PRM_Sides", 5},
      {u"PRM_Emphasis", 90},
      {u"PRM_EmphAlpha", 1}},
     false},
    {"Image",
     {{u"PRM_Shape", 3},
      {u"PRM_Center_X", 0.5},
      {u"PRM_Center_Y", 0.5},
      {u"PRM_RadiusPSF1", 0.1},
      {u"PRM_RadiusPSF2", 0.3}},
     false},
    {"ImageOfSpread",
     {{u"PRM_Shape", 3},
      {u"PRM_Center_X", 0.4},
      {u"PRM_Center_Y", 0.6},
      {u"PRM_RadiusPSF1", 0.1},
      {u"PRM_RadiusPSF2", 0.3},
      {u"PRM_Emphasis", 30}},
     true},
};

// A frame that could not be converted leaves two images with an instance that has thrown, of three
// blocks each: what the host's own exceptions leave, too.
constexpr long kBlocksOfTwoImages = 6;

// What a frame is, as far as one can tell.
enum class Seen { kExpected, kBlack, kCopy, kUntouched, kOfEarlierAperture, kWithoutLight, kOther };

bool IsAll(const LifeFrame& frame, std::uint16_t sample) {
  return std::all_of(frame.begin(), frame.end(),
                     [sample](std::uint16_t each) { return each == sample; });
}

// Nothing, or nothing but the source's alpha.
bool IsBlack(const LifeFrame& frame) {
  const bool hasAlpha = frame[3] != 0;
  for (std::size_t i = 0; i < frame.size(); ++i) {
    const unsigned wanted = hasAlpha && i % 4 == 3 ? faults::SourceSample(i) >> 1U : 0U;
    if (frame[i] >> 1U != wanted) {
      return false;
    }
  }
  return true;
}

// In 15 bits.
bool IsCopy(const LifeFrame& frame) {
  for (std::size_t i = 0; i < frame.size(); ++i) {
    if (frame[i] >> 1U != faults::SourceSample(i) >> 1U) {
      return false;
    }
  }
  return true;
}

// One green throughout, which is what chroma of zero becomes; whatever the alpha.
bool IsWithoutLight(const LifeFrame& frame) {
  for (std::size_t i = 0; i < frame.size(); i += 4) {
    if (frame[i] >> 1U != 0 || frame[i + 2] >> 1U != 0 || frame[i + 1] != frame[1]) {
      return false;
    }
  }
  return true;
}

class RefusedModule : public testing::TestWithParam<std::tuple<std::size_t, Stage, int>> {
 public:
  RefusedModule()
      : look(kLooks[std::get<0>(GetParam())]),
        stage(std::get<1>(GetParam())),
        ways(std::get<2>(GetParam())),
        isImage(look.numbers.at(u"PRM_Shape") == 3),
        isExact(lx_test::ModuleEngine() == "exact"),
        isFast(lx_test::ModuleEngine() == "fast") {
    const char* const text = std::getenv("REFUSALS_STRIDE");
    stride = text != nullptr ? std::max(std::atol(text), 1L) : isExact ? 83 : isFast ? 1 : 9;
    shared = static_cast<LifeReport*>(mmap(nullptr, sizeof(LifeReport), PROT_READ | PROT_WRITE,
                                           MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  }
  ~RefusedModule() override { munmap(shared, sizeof(LifeReport)); }

  // What a process reports; what it said before it ended is in a file.
  const LifeReport& Live(Kind kind, long n) {
    new (shared) LifeReport;
    // FFTW writes out what is still to be written, also here, before it ends the process.
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
      const rlimit none{0, 0};
      setrlimit(RLIMIT_CORE, &none);
      dup2(open(said.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
      const auto one = ways == 1 ? std::make_unique<lx_test::OneProcessor>() : nullptr;
      faults::LiveWithModule(look, stage, kind, n, shared);
      _exit(0);
    }
    waitpid(child, &status, 0);
    return *shared;
  }

  std::string Said() const {
    std::ifstream file(said);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  Seen LookAt(const LifeFrame& frame, LifeStep step) const {
    if (frame == whole.frames[step]) {
      return Seen::kExpected;
    }
    if (IsBlack(frame)) {
      return Seen::kBlack;
    }
    if (IsAll(frame, faults::kUntouched)) {
      return Seen::kUntouched;
    }
    if (IsCopy(frame)) {
      return Seen::kCopy;
    }
    if (frame == whole.frames[faults::kFresh]) {
      return Seen::kOfEarlierAperture;
    }
    return IsWithoutLight(frame) ? Seen::kWithoutLight : Seen::kOther;
  }

  // Where the process has ended before its time: by a library that does so without memory.
  void LookAtEnd(long n) {
    const std::string words = Said();
    const bool isOfThreads = words.find("thread-local data") != std::string::npos;
    const bool isOfFftw = isExact && words.find("fftw: alloc.c") != std::string::npos;
    EXPECT_TRUE(isOfThreads || isOfFftw) << n << " ended with " << status << ": " << words;
    ++counts[isOfThreads ? "ended by the C library" : "ended by FFTW"];
  }

  // The frame that was being rendered: whole, or as the module leaves one that it cannot render.
  // Intended: the engine's status is one for all ways of a pass, so that one that begins clears
  // what another has told, and with the engines of kernels a frame may then lack a part.
  void LookAtRefused(const LifeReport& report, long n) {
    const Seen seen = LookAt(report.frames[faults::kRefusedFrame], faults::kRefusedFrame);
    if (report.told != Told::kDone) {
      EXPECT_EQ(Seen::kUntouched, seen) << n;
      ++counts["told"];
      return;
    }
    const bool mayLackPart = !isFast && !isExact && ways > 1;
    // Without memory for its picture an image's aperture stays the last one.
    const bool mayBeEarlier = isImage && stage == Stage::kLaterFrame;
    EXPECT_TRUE(seen != Seen::kOther || mayLackPart) << n;
    EXPECT_TRUE(seen != Seen::kOfEarlierAperture || mayBeEarlier) << n;
    // Intended: exact goes on with a spectrum of zeros where it had no memory to turn its mask
    // round.
    EXPECT_TRUE(seen != Seen::kWithoutLight || isExact) << n;
    static constexpr const char* kNames[] = {
        "whole",         "black",       "a copy", "untouched", "of the earlier aperture",
        "without light", "lacks a part"};
    ++counts[kNames[static_cast<int>(seen)]];
  }

  // Those after it. A load that failed is not repeated before a value of the aperture changes, but
  // for an image, which is loaded for each frame. An instance without an engine stays so.
  void LookAtNext(const LifeReport& report, long n) {
    const Seen refused = LookAt(report.frames[faults::kRefusedFrame], faults::kRefusedFrame);
    const Seen next = LookAt(report.frames[faults::kNextFrame], faults::kNextFrame);
    const Seen other = LookAt(report.frames[faults::kOtherLook], faults::kOtherLook);
    if (isFast && isImage) {
      EXPECT_TRUE(next == Seen::kExpected || (next == Seen::kBlack && refused == next)) << n;
    } else if (!isImage) {
      EXPECT_TRUE(next == Seen::kExpected || (report.told == Told::kDone && next == refused)) << n;
    }
    EXPECT_TRUE(other == Seen::kExpected || (other == Seen::kBlack && next == other)) << n;
    EXPECT_EQ(Seen::kExpected, LookAt(report.frames[faults::kFresh], faults::kFresh)) << n;
    EXPECT_EQ(Seen::kExpected, LookAt(report.frames[faults::kLoadedAnew], faults::kLoadedAnew))
        << n;
  }

  void LookAtRest(const LifeReport& report, long n) {
    EXPECT_TRUE(report.calls.Begins(whole.calls)) << n;
    EXPECT_FALSE(report.isHeld) << n;
    EXPECT_EQ(whole.requestsOfEnd, report.requestsOfEnd) << n;
    const long may = report.told == Told::kThrew ? kBlocksOfTwoImages : 0;
    EXPECT_LE(report.kept, whole.kept + may) << n;
  }

  // Each request of a kind, until a life comes through with none refused.
  void RefuseEach(Kind kind) {
    whole = Live(kind, 0);
    ASSERT_TRUE(whole.isFinished) << Said();
    EXPECT_FALSE(IsBlack(whole.frames[faults::kRefusedFrame]));
    EXPECT_FALSE(IsCopy(whole.frames[faults::kRefusedFrame]));
    // What ends must not need what may be refused. FFTW's end does.
    EXPECT_EQ(0, isExact ? 0 : whole.requestsOfEnd);
    long refused = 0;
    for (long n = 1;; n += kind == Kind::kMemory ? stride : 1) {
      const LifeReport& report = Live(kind, n);
      if (!report.isFinished) {
        LookAtEnd(n);
      } else if (report.refused == nullptr) {
        EXPECT_EQ(whole.frames, report.frames);
        EXPECT_EQ(whole.kept, report.kept);
        break;
      } else {
        LookAtRefused(report, n);
        LookAtNext(report, n);
        LookAtRest(report, n);
      }
      ++refused;
      if (HasFailure()) {
        break;
      }
    }
    Say(refused);
  }

  void Say(long refused) const {
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::printf("%s %s: %ld refused", lx_test::ModuleEngine().c_str(), name.c_str(), refused);
    for (const auto& [how, count] : counts) {
      std::printf(", %ld %s", count, how.c_str());
    }
    std::printf("\n");
  }

  const LifeLook& look;
  Stage stage;
  int ways;
  bool isImage;
  bool isExact;
  bool isFast;
  long stride = 1;
  lx_test::ScratchFolder folder;
  std::filesystem::path said = folder / "said";
  LifeReport* shared;
  LifeReport whole;
  int status = 0;
  std::map<std::string, long> counts;
};

TEST_P(RefusedModule, GivesWholeFramesOrNoneWithoutMemory) {
  RefuseEach(Kind::kMemory);
  EXPECT_GE(whole.requests, 16);
}

TEST_P(RefusedModule, GivesTheSameFrameWithoutThreads) {
  RefuseEach(Kind::kThreads);
  EXPECT_EQ(counts["whole"], whole.requests);
}

INSTANTIATE_TEST_SUITE_P(Of, RefusedModule,
                         testing::Combine(testing::Range(std::size_t{0}, std::size(kLooks)),
                                          testing::Values(Stage::kFirstFrame, Stage::kLaterFrame),
                                          testing::Values(1, 2)),
                         [](const auto& one) {
                           return std::string(kLooks[std::get<0>(one.param)].name) +
                                  (std::get<1>(one.param) == Stage::kFirstFrame ? "First"
                                                                                : "Later") +
                                  (std::get<2>(one.param) == 1 ? "OneWay" : "TwoWays");
                         });

}  // namespace
