// SPDX-License-Identifier: BSD-3-Clause
// What is opened by which name.
#include "host/viewer/clip/viewed_clip.h"

#include <gtest/gtest.h>

#include <fstream>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "host/viewer/clip/clip_opener.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

class ViewedClips : public testing::Test {
 public:
  void Make(const std::vector<std::string>& names) const {
    for (const std::string& name : names) {
      std::ofstream(folder / name) << "no picture yet";
    }
  }
  std::string In(const std::string& name) const { return (folder / name).string(); }

  std::string FaultOf(const std::string& name) const {
    try {
      const ViewedClip clip(In(name));
    } catch (const std::exception& fault) {
      return fault.what();
    }
    return {};
  }

  lx_test::ScratchFolder folder;
};

TEST_F(ViewedClips, OfOneFileHaveOneFrame) {
  Make({"lamp.7.png", "lamp.8.png"});

  const ViewedClip clip(In("lamp.7.png"));

  EXPECT_FALSE(clip.IsSequence());
  EXPECT_EQ(std::vector<int>{1}, clip.Frames());
  EXPECT_EQ((ShotSpan{1, 1}), clip.Span());
  EXPECT_EQ(folder / "lamp.7.png", clip.File(1));
  EXPECT_EQ("lamp.7.png", clip.Title());
  EXPECT_EQ(In("lamp.7.png"), clip.Input());
}

TEST_F(ViewedClips, OfASequenceHaveTheFramesThatAreThere) {
  Make({"shot.0009.exr", "shot.0010.exr", "shot.0012.exr", "shot.12.exr", "other.0011.exr"});

  const ViewedClip clip(In("shot.####.exr"));

  EXPECT_TRUE(clip.IsSequence());
  EXPECT_EQ((std::vector<int>{9, 10, 12}), clip.Frames());
  EXPECT_EQ((ShotSpan{9, 12}), clip.Span());
  EXPECT_EQ(folder / "shot.0011.exr", clip.File(11));
  EXPECT_EQ("shot.####.exr", clip.Title());
}

TEST_F(ViewedClips, TakeTheFramesThatTheNameLists) {
  const ViewedClip clip(In("shot.20-18,22#.exr"));

  EXPECT_EQ((std::vector<int>{18, 19, 20, 22}), clip.Frames());
  EXPECT_EQ((ShotSpan{18, 22}), clip.Span());
}

TEST_F(ViewedClips, SayWhatIsMissing) {
  EXPECT_EQ(In("none.png") + ": not found", FaultOf("none.png"));
  EXPECT_EQ(In("none.####.png") + ": no such files", FaultOf("none.####.png"));
}

TEST_F(ViewedClips, OfFilmsAreRefusedAndSayWhatOpensThem) {
  Make({"rushes.mov"});

  const std::string fault = FaultOf("rushes.mov");

  EXPECT_TRUE(fault.starts_with(In("rushes.mov") + ": a film")) << fault;
  EXPECT_NE(std::string::npos, fault.find("glimmerhost render takes films")) << fault;
  EXPECT_NE(std::string::npos, fault.find("ffmpeg -i rushes.mov rushes.%04d.png")) << fault;
}

struct Offer {
  std::vector<std::string> files;
  std::string opened;
  std::string offered;
};

TEST_F(ViewedClips, OfNumberedFilesComeWithTheirSequence) {
  const std::vector<Offer> offers{
      {{"a.1001.exr", "a.1002.exr"}, "a.1001.exr", "a.####.exr"},
      {{"v2_b_08.png", "v2_b_09.png"}, "v2_b_09.png", "v2_b_##.png"},
      // Numbers as they come: two digits alone would leave out the first two.
      {{"c8.png", "c9.png", "c10.png", "c11.png", "c12.png"}, "c10.png", "c@.png"},
      {{"c8.png", "c9.png"}, "c9.png", "c@.png"},
      {{"k.01.png", "k.02.png", "k.3.png", "k.4.png", "k.5.png"}, "k.01.png", "k.##.png"},
      {{"d.5.left.tif", "d.6.left.tif"}, "d.5.left.tif", "d.@.left.tif"},
      {{"0001.jp2", "0002.jp2"}, "0001.jp2", "####.jp2"},
      // Nothing beside it, of another width, or of another kind.
      {{"e.1001.exr"}, "e.1001.exr", ""},
      {{"f.0001.png", "f.02.png"}, "f.0001.png", ""},
      {{"g.01.png", "g.02.tif"}, "g.01.png", ""},
      {{"plain.png", "plain.jp2"}, "plain.png", ""},
      {{"h.1.mov", "h.2.mov"}, "h.1.mov", ""},
  };
  for (const Offer& offer : offers) {
    Make(offer.files);
    EXPECT_EQ(offer.offered.empty() ? "" : In(offer.offered), SequenceOf(folder / offer.opened))
        << offer.opened;
  }
}

// What the opener has, once it rings.
OpenedClip Opened(const std::string& name) {
  std::promise<void> rung;
  ClipOpener opener([&] { rung.set_value(); });
  opener.Ask(name);
  rung.get_future().wait();
  const std::optional<OpenedClip> opened = opener.Fetch();
  EXPECT_FALSE(opener.Fetch());
  return opened.value_or(OpenedClip{});
}

TEST_F(ViewedClips, AreOpenedOnAnotherThreadWithTheirSequence) {
  Make({"a.1001.exr", "a.1002.exr"});

  const OpenedClip file = Opened(In("a.1002.exr"));
  const OpenedClip sequence = Opened(In("a.####.exr"));
  const OpenedClip none = Opened(In("b.exr"));

  ASSERT_NE(nullptr, file.clip);
  EXPECT_EQ(folder / "a.1002.exr", file.clip->File(1));
  EXPECT_EQ(In("a.####.exr"), file.sequence);
  ASSERT_NE(nullptr, sequence.clip);
  EXPECT_EQ((std::vector<int>{1001, 1002}), sequence.clip->Frames());
  EXPECT_EQ("", sequence.sequence);
  EXPECT_EQ(nullptr, none.clip);
  EXPECT_EQ(In("b.exr") + ": not found", none.fault);
}

}  // namespace
}  // namespace glimmerhost
