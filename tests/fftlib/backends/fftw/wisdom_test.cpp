// SPDX-License-Identifier: BSD-3-Clause
// What the engine learns by measuring, and the file that keeps it.
#include "fftlib/backends/fftw/wisdom.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "baselib/platform/platform.h"
#include "fftlib/fftlib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/fresh_services.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using lx::DefocusEngine;
using lx_test::Inside;
using Calls = std::vector<std::string>;

// Engines that measure, with a home directory of the test's own. Measuring itself is
// replaced by a quick plan, which teaches the library nothing.
class Wisdom : public testing::Test {
 public:
  Wisdom() : table_(lx::SystemPlatform()), scope_(&table_) {
    home = folder_.Path() / "home";
    homeText = home.string();
    table_.defaultHome = homeText.c_str();
    table_.openSettings = [](lx::SettingsRoot, const char*) -> lx::SettingsHandle {
      return nullptr;
    };
    table_.hasEnvironmentVariable = [](const char* variable) {
      return variableIsSet && std::string(variable) == "LX_USE_FFTW_WISDOM";
    };
    table_.openFile = [](const char* path, const char* mode) {
      std::FILE* file = refusesWriting && mode[0] == 'w' ? nullptr : std::fopen(path, mode);
      files.push_back(std::string(mode) + " " + fs::path(path).filename().string() +
                      (file == nullptr ? " fails" : ""));
      return file;
    };
    table_.closeFile = [](std::FILE* file) {
      files.emplace_back("close");
      return lx::SystemPlatform().closeFile(file) && !losesOnClose;
    };
    variableIsSet = true;
    refusesWriting = false;
    losesOnClose = false;
    files.clear();
    lx::wisdom_folder_made() = false;
    fft.OverwriteArrays();
  }
  ~Wisdom() override { lx::wisdom_folder_made() = false; }

  static fs::path File() { return home / "Settings" / "fftw3_wisdom_lx.dat"; }

  static std::string Content() {
    std::ifstream in(File());
    return {std::istreambuf_iterator<char>(in), {}};
  }

  static void WriteFile(const std::string& content) {
    fs::create_directories(File().parent_path());
    std::ofstream(File()) << content;
  }

  // Has the engine make the plan of a PSF at a side of 64.
  static void Plan(DefocusEngine* engine) { engine->BuildShapePsf(20, 20, 1, 3, 3, 0, 6); }

  // The library's calls that matter here.
  Calls Learning() const {
    Calls calls;
    for (const std::string& call : fft.Log()) {
      if (call == "import" || call == "export" || call == "cleanup" ||
          call.rfind("forward", 0) == 0) {
        calls.push_back(call);
      }
    }
    return calls;
  }

  static inline fs::path home;
  static inline std::string homeText;
  static inline bool variableIsSet;
  static inline bool refusesWriting;
  static inline bool losesOnClose;
  static inline Calls files;
  lx_test::FftRecorder fft;

 private:
  lx_test::ScratchFolder folder_;
  lx_test::FreshServices fresh_;
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

std::string Part() {
  return "fftw3_wisdom_lx.dat." + std::to_string(lx::SystemPlatform().processId()) + ".part";
}

TEST_F(Wisdom, TouchesNoFileWithoutTheVariable) {
  variableIsSet = false;
  WriteFile("something");
  {
    DefocusEngine engine;
    variableIsSet = true;  // too late for this engine
    Plan(&engine);
  }

  EXPECT_EQ(Calls{}, files);
  EXPECT_EQ("something", Content());
  EXPECT_EQ(0, fft.Count("import"));
  ASSERT_EQ(1, fft.Count("forward"));
  EXPECT_NE(std::string::npos, Learning().front().find("flags 64"));
}

TEST_F(Wisdom, IsReadBeforeAPlanAndWrittenBehindIt) {
  auto engine = std::make_unique<DefocusEngine>();
  fft.Clear();
  Plan(engine.get());

  // There is no file yet, so there is nothing to import.
  const std::string plan = Learning().front();
  EXPECT_EQ(0U, plan.find("forward"));
  EXPECT_NE(std::string::npos, plan.find("flags 0"));
  EXPECT_EQ("export", Learning()[1]);
  EXPECT_EQ((Calls{"r fftw3_wisdom_lx.dat fails", "w+ " + Part(), "close"}), files);
  EXPECT_TRUE(fs::exists(File()));
  EXPECT_FALSE(fs::exists(File().parent_path() / Part()));
}

TEST_F(Wisdom, IsReadOnceItWasRead) {
  { DefocusEngine first; }
  fft.Clear();
  files.clear();
  DefocusEngine engine;
  Plan(&engine);
  EXPECT_EQ(1, Inside(engine).wisdomLoaded());
  EXPECT_EQ("import", Learning().front());
  files.clear();

  engine.BuildShapePsf(200, 200, 1, 3, 3, 0, 6);  // a larger side, and another plan

  EXPECT_EQ((Calls{"w+ " + Part(), "close"}), files);
}

TEST_F(Wisdom, IsTriedAgainWhileItCannotBeRead) {
  DefocusEngine engine;
  Plan(&engine);
  EXPECT_EQ(0, Inside(engine).wisdomLoaded());
  fs::remove(File());
  files.clear();

  engine.BuildShapePsf(200, 200, 1, 3, 3, 0, 6);

  EXPECT_EQ("r fftw3_wisdom_lx.dat fails", files.front());
}

TEST_F(Wisdom, LeavesPlansAloneThatAreThere) {
  DefocusEngine engine;
  Plan(&engine);
  files.clear();

  Plan(&engine);

  EXPECT_EQ(Calls{}, files);
}

TEST_F(Wisdom, ReplacesAFileThatIsNoneOfTheLibrarys) {
  WriteFile("no wisdom at all");
  DefocusEngine engine;
  Plan(&engine);

  EXPECT_EQ(0, Inside(engine).wisdomLoaded());
  EXPECT_EQ(0, engine.GetStatus());
  EXPECT_EQ(0U, Content().find("(fftw-")) << Content();
  EXPECT_EQ((Calls{"r fftw3_wisdom_lx.dat", "close", "w+ " + Part(), "close"}), files);
}

TEST_F(Wisdom, ReplacesAnEmptyFile) {
  WriteFile("");
  DefocusEngine engine;
  Plan(&engine);

  EXPECT_EQ(0, engine.GetStatus());
  EXPECT_EQ(0U, Content().find("(fftw-"));
}

TEST_F(Wisdom, IsWrittenOnceMoreAtTheEndOfTheEngineBeforeTheLibraryForgets) {
  {
    DefocusEngine engine;
    Plan(&engine);
    fft.Clear();
    files.clear();
  }

  EXPECT_EQ((Calls{"import", "export", "cleanup"}), Learning());
  EXPECT_EQ((Calls{"r fftw3_wisdom_lx.dat", "close", "w+ " + Part(), "close"}), files);
}

TEST_F(Wisdom, IsWrittenByAnEngineThatPlannedNothing) {
  { DefocusEngine engine; }

  EXPECT_EQ((Calls{"export", "cleanup"}), Learning());
  EXPECT_TRUE(fs::exists(File()));
}

TEST_F(Wisdom, ThatCannotBeWrittenIsLeftWithoutAWord) {
  refusesWriting = true;
  testing::internal::CaptureStderr();
  {
    DefocusEngine engine;
    Plan(&engine);
    EXPECT_EQ(0, engine.GetStatus());
    EXPECT_FALSE(engine.ExportWisdom());
  }

  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_FALSE(fs::exists(File()));
}

TEST_F(Wisdom, LeavesAProtectedFileAsItIs) {
  WriteFile("kept");
  fs::permissions(File(), fs::perms::owner_read);
  DefocusEngine engine;

  Plan(&engine);

  EXPECT_FALSE(engine.ExportWisdom());
  EXPECT_EQ(0, engine.GetStatus());
  EXPECT_EQ("kept", Content());
  EXPECT_FALSE(fs::exists(home / "Settings" / Part()));
}

TEST_F(Wisdom, KeepsTheGoodFileWhereTheDiskIsFull) {
  { DefocusEngine engine; }
  const std::string good = Content();
  losesOnClose = true;
  DefocusEngine engine;

  EXPECT_FALSE(engine.ExportWisdom());

  EXPECT_EQ(good, Content());
  EXPECT_FALSE(fs::exists(File().parent_path() / Part()));
}

TEST_F(Wisdom, MakesItsFolderOnceInAProcess) {
  { DefocusEngine engine; }
  EXPECT_TRUE(fs::is_directory(home / "Logs"));
  fs::remove_all(home / "Logs");

  { DefocusEngine engine; }

  EXPECT_FALSE(fs::exists(home / "Logs"));
}

TEST_F(Wisdom, LivesWithoutAFolder) {
  fs::remove_all(home);
  std::ofstream(home) << "a file in the place of the folder";
  DefocusEngine engine;
  Plan(&engine);

  EXPECT_EQ(0, engine.GetStatus());
  EXPECT_FALSE(engine.ImportWisdom());
}

// The library's own planner, measuring a small grid for real.
class MeasuredWisdom : public Wisdom {
 public:
  MeasuredWisdom() : real_(&lx::LibraryFftCalls()) {}

  // The library writes what it knows in any order.
  static std::multiset<std::string> Lines() {
    std::multiset<std::string> lines;
    std::istringstream in(Content());
    for (std::string line; std::getline(in, line);) {
      lines.insert(line);
    }
    return lines;
  }

 private:
  lx::ScopedFftCalls real_;
};

TEST_F(MeasuredWisdom, SurvivesAnEngineThatOpensAndClosesWithoutAPlan) {
  {
    DefocusEngine engine;
    Plan(&engine);
  }
  const auto learnt = Lines();
  ASSERT_LT(2U, learnt.size()) << Content();

  { DefocusEngine engine; }

  EXPECT_EQ(learnt, Lines());
}

TEST_F(MeasuredWisdom, IsTakenOverByTheNextEngine) {
  {
    DefocusEngine engine;
    Plan(&engine);
  }
  DefocusEngine engine;
  Plan(&engine);

  EXPECT_EQ(1, Inside(engine).wisdomLoaded());
}

}  // namespace
