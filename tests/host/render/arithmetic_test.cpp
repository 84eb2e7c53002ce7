// SPDX-License-Identifier: BSD-3-Clause
// The line that says by which arithmetic frames come about.
#include "host/render/arithmetic.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "baselib/platform/platform.h"
#include "fftlib/backends/footprint.h"
#include "host/module/effect_module.h"
#include "host/module/module_choice.h"
#include "host/shots/file_hash.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::EffectModule;

// A machine of three processors of a kind of its own.
class Arithmetic : public testing::Test {
 public:
  Arithmetic() {
    machine.processorForm = [] { return "a slide rule"; };
    machine.processorCount = [] { return 3; };
    machine.hasEnvironmentVariable = [](const char*) { return false; };
  }

  std::string Of(const fs::path& file) const {
    const EffectModule module(glimmerhost::ChoiceOfFile(file));
    const lx::ScopedPlatform scope(&machine);
    return glimmerhost::ArithmeticOf(module);
  }

  static fs::path ModuleOf(const std::string& engine) {
    return fs::path(MODULE_FOLDER) / engine / MODULE_NAME;
  }

  lx::Platform machine;
};

TEST_F(Arithmetic, OfFastIsTheSameOnEveryMachine) {
  EXPECT_EQ("fast 1", Of(ModuleOf("fast")));
  EXPECT_EQ("fast 1", glimmerhost::FloatArithmetic());
}

TEST_F(Arithmetic, OfKernelsNamesTheProcessor) {
  EXPECT_EQ("double 1, a slide rule", Of(ModuleOf("double")));
  EXPECT_EQ("single 1, a slide rule", Of(ModuleOf("single")));
}

TEST_F(Arithmetic, OfExactNamesItsLibraryTheProcessorAndTheThreads) {
  const std::string several = Of(ModuleOf(""));
  machine.processorCount = [] { return 1; };
  const std::string one = Of(ModuleOf(""));
  machine.hasEnvironmentVariable = [](const char* name) {
    return name == std::string("LX_USE_FFTW_WISDOM");
  };
  const std::string measured = Of(ModuleOf(""));

  // A version has digits with a point between them.
  const std::string begin = "exact 1, fftw-3.";
  EXPECT_EQ(0U, several.find(begin)) << several;
  const std::string library = several.substr(9, several.find(", ", 9) - 9);
  EXPECT_EQ("exact 1, " + library + ", a slide rule, 3 threads", several);
  EXPECT_EQ("exact 1, " + library + ", a slide rule, 1 thread", one);
  EXPECT_EQ(one + ", measured plans", measured);
}

// Who knows what it does.
TEST_F(Arithmetic, OfAFileThatTellsNoneNamesTheFile) {
  EXPECT_EQ("exact of file " + glimmerhost::FileHash(COPYING_MODULE) + ", a slide rule, 3 threads",
            Of(COPYING_MODULE));
}

TEST_F(Arithmetic, BeginsWithTheEngineAndItsNumberOnEveryMachine) {
  for (const fs::path& file :
       {ModuleOf("fast"), ModuleOf("double"), ModuleOf(""), fs::path(COPYING_MODULE)}) {
    const std::string engine = glimmerhost::NumberedEngine(glimmerhost::ChoiceOfFile(file));
    EXPECT_EQ(engine, Of(file).substr(0, engine.size()));
    EXPECT_EQ(std::string::npos, engine.find(',')) << engine;
  }
  EXPECT_EQ("exact 1", glimmerhost::NumberedEngine(glimmerhost::ChoiceOfFile(ModuleOf(""))));
}

}  // namespace
