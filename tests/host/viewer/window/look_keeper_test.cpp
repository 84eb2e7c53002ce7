// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/look_keeper.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "host/looks/parameter_file.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

class KeptLook : public testing::Test {
 public:
  std::unique_ptr<LookKeeper> MakeKeeper(LookDocument* of) {
    return std::make_unique<LookKeeper>(page, of, scratch.Path() / "state");
  }

  // As a window leaves it that is killed: the file, and no lock.
  void LeaveLook(const std::string& name, const std::string& text, const std::string& input) {
    fs::create_directories(scratch.Path() / "state");
    std::ofstream(scratch.Path() / "state" / (name + ".toml")) << text;
    std::ofstream(scratch.Path() / "state" / (name + ".input")) << input;
  }

  int KeptLooks() const {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(scratch.Path() / "state")) {
      count += entry.path().extension() == ".toml" ? 1 : 0;
    }
    return count;
  }

  Page page = Page::Load(PAGE);
  lx_test::ScratchFolder scratch;
  LookDocument document{page, nullptr};
};

TEST_F(KeptLook, IsOnTheDiskSoonAfterAChange) {
  const auto keeper = MakeKeeper(&document);
  QSignalSpy kept(keeper.get(), &LookKeeper::Kept);
  document.SetText("radius-x", "12px", "");
  ASSERT_TRUE(kept.wait());

  bool isFound = false;
  for (const auto& entry : fs::directory_iterator(scratch.Path() / "state")) {
    if (entry.path().extension() == ".toml") {
      EXPECT_EQ(ReadParameterFile(page, entry.path()).At("radius-x"), "12px");
      isFound = true;
    }
  }
  EXPECT_TRUE(isFound);
}

TEST_F(KeptLook, IsGoneWhenItsWindowEndsAsItShould) {
  auto keeper = MakeKeeper(&document);
  QSignalSpy kept(keeper.get(), &LookKeeper::Kept);
  document.SetText("radius-x", "12px", "");
  ASSERT_TRUE(kept.wait());
  keeper.reset();
  EXPECT_FALSE(MakeKeeper(&document)->Left());
}

TEST_F(KeptLook, IsNoneWhereNothingWasChanged) {
  const auto keeper = MakeKeeper(&document);
  QSignalSpy kept(keeper.get(), &LookKeeper::Kept);
  document.SetPicture(160, 90, {});
  ASSERT_TRUE(kept.wait());
  EXPECT_EQ(KeptLooks(), 0);
}

TEST_F(KeptLook, IsGoneWhenItIsSaved) {
  const auto keeper = MakeKeeper(&document);
  QSignalSpy kept(keeper.get(), &LookKeeper::Kept);
  document.SetText("radius-x", "12px", "");
  ASSERT_TRUE(kept.wait());
  EXPECT_EQ(KeptLooks(), 1);
  document.Save(scratch.Path() / "saved.toml");
  ASSERT_TRUE(kept.wait());
  EXPECT_EQ(KeptLooks(), 0);
}

TEST_F(KeptLook, OfADeadWindowIsFoundWithWhatWasOpen) {
  LeaveLook("look-1-1", "version = 1\nsides = 7\n", "/shots/shot.####.exr");
  const auto keeper = MakeKeeper(&document);
  const std::optional<LeftLook> left = keeper->Left();
  ASSERT_TRUE(left);
  EXPECT_EQ(ReadParameterFile(page, left->look).At("sides"), "7");
  EXPECT_EQ(left->input, "/shots/shot.####.exr");
  LookKeeper::Forget(*left);
  EXPECT_FALSE(keeper->Left());
}

TEST_F(KeptLook, OfALivingWindowIsItsOwn) {
  const auto first = MakeKeeper(&document);
  QSignalSpy kept(first.get(), &LookKeeper::Kept);
  document.SetText("radius-x", "12px", "");
  ASSERT_TRUE(kept.wait());
  LookDocument other(page, nullptr);
  EXPECT_FALSE(MakeKeeper(&other)->Left());
}

}  // namespace
}  // namespace glimmerhost
