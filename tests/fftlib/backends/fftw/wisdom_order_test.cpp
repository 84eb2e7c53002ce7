// SPDX-License-Identifier: BSD-3-Clause
// When what measuring has taught goes into its file.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "baselib/platform/platform.h"
#include "fftlib/fftlib.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::MakeImage;
using Calls = std::vector<std::string>;

// Engines that measure by quick plans, with files that nobody finds again.
class WisdomOrder : public testing::Test {
 public:
  WisdomOrder() : table_(lx::SystemPlatform()), scope_(&table_) {
    table_.hasEnvironmentVariable = [](const char* name) {
      return std::strcmp(name, "LX_USE_FFTW_WISDOM") == 0;
    };
    table_.isDirectory = [](const char*) { return true; };
    table_.makeDirectory = [](const char*) { return true; };
    table_.openFile = [](const char*, const char* mode) {
      return mode[0] == 'r' ? nullptr : std::tmpfile();
    };
    table_.moveFile = [](const char*, const char*) { return true; };
    table_.removeFile = [](const char*) {};
    fft.OverwriteArrays();
  }

  // Plans, runs and exports, by their first words.
  Calls Steps() const {
    Calls steps;
    for (const std::string& call : fft.Log()) {
      const std::string word = call.substr(0, call.find(' '));
      if (word == "forward" || word == "inverse" || word == "execute" || word == "export" ||
          word == "destroy") {
        steps.push_back(word);
      }
    }
    return steps;
  }

  static bool RunFrame(DefocusEngine* engine) {
    const Image frame = MakeImage(24, 24, 4, 1);
    lx_test::FillNoise(frame, 1);
    return engine->SetSourceImage(frame.get()) && engine->Convolve(frame.get(), 15);
  }

  lx_test::FftRecorder fft;

 private:
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

TEST_F(WisdomOrder, IsWrittenBehindEachPlanBeforeTheFirstRun) {
  DefocusEngine engine;
  engine.BuildShapePsf(24, 24, 1, 2, 2, 0, 6);
  EXPECT_EQ((Calls{"forward", "export", "execute"}), Steps());
  fft.Clear();

  ASSERT_TRUE(RunFrame(&engine));

  Calls expected{"forward", "export", "inverse", "export"};
  expected.insert(expected.end(), 8, "execute");
  EXPECT_EQ(expected, Steps());
}

TEST_F(WisdomOrder, IsWrittenWhileTheEnginesPlansAreThere) {
  auto engine = std::make_unique<DefocusEngine>();
  engine->BuildShapePsf(24, 24, 1, 2, 2, 0, 6);
  ASSERT_TRUE(RunFrame(engine.get()));
  fft.Clear();

  engine.reset();

  EXPECT_EQ((Calls{"export", "destroy", "destroy", "destroy"}), Steps());
}

TEST_F(WisdomOrder, IsNotWrittenForAPlanThatWasNotMade) {
  DefocusEngine engine;
  engine.BuildShapePsf(24, 24, 1, 2, 2, 0, 6);
  fft.Clear();
  fft.RefusePlan(2);

  EXPECT_FALSE(RunFrame(&engine));

  EXPECT_EQ((Calls{"forward", "export", "inverse"}), Steps());
}

}  // namespace
