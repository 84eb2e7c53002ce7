// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/look_document.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "host/looks/parameter_file.h"
#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

const Page& ThePage() {
  static const Page page = Page::Load(PAGE);
  return page;
}

class DocumentTest : public testing::Test {
 protected:
  DocumentTest() { document_.SetPicture(1000, 500, {1, 11}); }

  double RadiusAt(int frame) {
    return std::get<double>(document_.ValuesAt(frame).at("PRM_RadiusX"));
  }

  LookDocument document_{ThePage(), nullptr};
};

using LookDocumentValues = DocumentTest;
using LookDocumentUndo = DocumentTest;
using LookDocumentFiles = DocumentTest;

TEST_F(LookDocumentValues, FollowThePictureWithoutAnEdit) {
  document_.SetText("radius", "40px", "");
  EXPECT_EQ(RadiusAt(1), 0.08);
  QSignalSpy changed(&document_, &LookDocument::Changed);

  document_.SetPicture(500, 500, {1, 11});

  EXPECT_EQ(RadiusAt(1), 0.16);
  EXPECT_EQ(changed.count(), 1);
  EXPECT_EQ(document_.UndoStack()->count(), 1);
  EXPECT_TRUE(document_.Fault().isEmpty());
  document_.SetPicture(70, 500, {1, 11});
  EXPECT_EQ(RadiusAt(1), 0.02);
  EXPECT_TRUE(document_.Fault().contains("radius-x must be between 0 and 35px, not 40px"))
      << document_.Fault().toStdString();
}

TEST_F(LookDocumentValues, AreThoseOfTheCommandLineForTheSameTexts) {
  const std::vector<std::pair<std::string, std::string>> typed = {
      {"radius", "4%"},        {"radius-y", "30px"},       {"shape", "image"},
      {"center", "100px,7px"}, {"emphasis", "1=1; 11=51"}, {"PRM_Precision", "on"}};
  Look look;
  for (const auto& [name, text] : typed) {
    document_.SetText(name, text, "");
    if (name.starts_with("PRM_")) {
      look.set.push_back(name + "=" + text);
    } else {
      look[name] = text;
    }
  }
  look["shot"] = "1-11";
  EXPECT_EQ(document_.ValuesAt(1), StillValues(ThePage(), {{"--", look}}, 1000, 500));
}

TEST_F(LookDocumentValues, OfWhatIsRefusedStayAndTheErrorSaysWhy) {
  document_.SetText("sides", "5", "");
  const Look before = document_.CurrentLook();
  QSignalSpy changed(&document_, &LookDocument::Changed);

  EXPECT_THROW(document_.SetText("sides", "2", ""), UsageError);
  EXPECT_THROW(document_.SetText("radius-x", "1=4px; soon=2", ""), UsageError);
  EXPECT_THROW(document_.SetText("rotatoin", "2", ""), UsageError);
  EXPECT_THROW(document_.SetValues({{"PRM_Emphasis", 501.0}}, 1, "", 0), UsageError);
  EXPECT_THROW(document_.SetTextAt("center", 1, "0.5", "", 0), UsageError);
  EXPECT_THROW(document_.UsePreset("no-such"), UsageError);
  try {
    document_.SetText("shot", "5-1", "");
    FAIL() << "nothing was thrown";
  } catch (const UsageError& error) {
    EXPECT_EQ(std::string(error.what()).find("shot "), 0U) << error.what();
  }

  EXPECT_EQ(document_.CurrentLook(), before);
  EXPECT_EQ(changed.count(), 0);
  EXPECT_EQ(document_.UndoStack()->count(), 1);
}

// What another picture made wrong stops no edit of anything else.
TEST_F(LookDocumentValues, CanBeEditedBesideWhatDoesNotGoWithThePicture) {
  document_.SetText("radius", "400px", "");
  document_.SetPicture(500, 500, {1, 11});
  ASSERT_FALSE(document_.Fault().isEmpty());

  document_.SetText("sides", "9", "");
  document_.SetText("radius-x", "10px", "");
  document_.SetText("radius-y", "10px", "");

  EXPECT_TRUE(document_.Fault().isEmpty());
  EXPECT_EQ(std::get<double>(document_.ValuesAt(1).at("PRM_Sides")), 9.0);
}

// Every kind of edit, undone and done again one after the other.
TEST_F(LookDocumentUndo, GoesThroughEveryKindOfEdit) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "film.toml") << "sides = 8\nmix = \"1=0; 11=1\"\n";
  const std::vector<std::function<void()>> edits = {
      [&] {
        document_.SetValues({{"PRM_RadiusX", 0.1}}, 1, "", 0);
      },
      [&] { document_.SetText("radius-y", "4px", ""); },
      [&] { document_.SetText("spread", "disc.png", ""); },
      [&] { document_.SetKeyframe("radius-x", 1); },
      [&] { document_.SetTextAt("radius-x", 11, "4px", "", 0); },
      [&] { document_.SetCourse("radius-x", 1, Course::kSmooth); },
      [&] { document_.MoveKeyframe("radius-x", 11, 9); },
      [&] { document_.RemoveKeyframe("radius-x", 9); },
      [&] { document_.UsePreset("focus-pull"); },
      [&] { document_.Reset("radius-x"); },
      [&] { document_.Load(folder / "film.toml"); },
      [&] {
        document_.MoveKeyframes({{"mix", {1, 11}}}, 1, LookDocument::NewGesture());
      },
      [&] {
        document_.RemoveKeyframes({{"mix", {2, 12}}});
      },
      [&] { document_.ResetAll(); }};
  std::vector<Look> looks = {document_.CurrentLook()};
  for (const auto& edit : edits) {
    edit();
    looks.push_back(document_.CurrentLook());
    ASSERT_NE(looks[looks.size() - 2], looks.back()) << "edit " << looks.size() - 1;
  }
  ASSERT_EQ(document_.UndoStack()->count(), static_cast<int>(edits.size()));

  for (std::size_t i = edits.size(); i-- > 0;) {
    document_.UndoStack()->undo();
    EXPECT_EQ(document_.CurrentLook(), looks[i]) << "undone " << i;
  }
  for (std::size_t i = 1; i < looks.size(); ++i) {
    document_.UndoStack()->redo();
    EXPECT_EQ(document_.CurrentLook(), looks[i]) << "done again " << i;
  }
}

TEST_F(LookDocumentUndo, TakesTheEditsOfOneGestureAsOne) {
  const int first = LookDocument::NewGesture();
  const int second = LookDocument::NewGesture();
  document_.SetValues({{"PRM_RadiusX", 0.1}}, 1, "", first);
  document_.SetValues({{"PRM_RadiusX", 0.2}}, 1, "", first);
  document_.SetValues({{"PRM_RadiusX", 0.3}}, 1, "", second);
  document_.SetText("radius-x", "0.4", "");
  document_.SetText("radius-x", "0.5", "");
  EXPECT_EQ(document_.UndoStack()->count(), 4);

  document_.UndoStack()->setIndex(1);
  EXPECT_EQ(RadiusAt(1), 0.2);
  document_.UndoStack()->undo();
  EXPECT_EQ(RadiusAt(1), 0.02);
}

TEST_F(LookDocumentUndo, HasNoStepForAGestureThatEndsWhereItBegan) {
  document_.SetText("radius-x", "0.1", "");
  const int gesture = LookDocument::NewGesture();

  document_.SetValues({{"PRM_RadiusX", 0.2}}, 1, "", gesture);
  document_.SetValues({{"PRM_RadiusX", 0.1}}, 1, "", gesture);
  document_.SetText("radius-x", "0.1", "");

  EXPECT_EQ(document_.UndoStack()->count(), 1);
}

TEST_F(LookDocumentUndo, LeavesAKeyframeThatADragOnlyCrossed) {
  document_.SetText("radius-x", "1=1px; 5=2px; 9=3px", "");
  const int gesture = LookDocument::NewGesture();

  document_.MoveKeyframes({{"radius-x", {1}}}, 4, gesture);
  EXPECT_EQ(document_.TextOf("radius-x"), "5=1px; 9=3px");
  document_.MoveKeyframes({{"radius-x", {1}}}, 5, gesture);
  EXPECT_EQ(document_.TextOf("radius-x"), "5=2px; 6=1px; 9=3px");
  document_.UndoStack()->undo();

  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 5=2px; 9=3px");
}

TEST_F(LookDocumentFiles, AreSavedAndLoadedTheSame) {
  const lx_test::ScratchFolder folder;
  QSignalSpy named(&document_, &LookDocument::FileChanged);
  document_.SetText("radius", "1=40px; last~=4%", "");
  document_.SetText("PRM_Precision", "on", "");
  const Look look = document_.CurrentLook();
  EXPECT_FALSE(document_.IsClean());

  document_.Save(folder / "film.toml");
  EXPECT_TRUE(document_.IsClean());
  EXPECT_EQ(document_.File(), folder / "film.toml");
  EXPECT_EQ(ReadParameterFile(ThePage(), folder / "film.toml"), look);
  document_.SetText("sides", "5", "");
  EXPECT_FALSE(document_.IsClean());
  document_.Save(folder / "film.json");
  document_.Load(folder / "film.toml");

  EXPECT_EQ(document_.CurrentLook(), look);
  EXPECT_TRUE(document_.IsClean());
  EXPECT_EQ(named.count(), 3);
  document_.UndoStack()->undo();
  EXPECT_EQ(document_.File(), folder / "film.json");
  EXPECT_EQ(document_.TextOf("sides"), "5");
}

TEST_F(LookDocumentFiles, ThatAreBrokenChangeNothingAndSayWhy) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "odd.toml") << "sides = 8\nsoftness = 2\n";
  std::ofstream(folder / "wide.toml") << "radius = \"4000px\"\n";
  std::ofstream(folder / "unit.toml") << "PRM_RadiusX = \"40px\"\n";
  const auto refusal = [&](const char* name) -> std::string {
    try {
      document_.Load(folder / name);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "nothing";
  };

  EXPECT_NE(refusal("odd.toml").find("odd.toml:2: unknown parameter \"softness\""),
            std::string::npos)
      << refusal("odd.toml");
  EXPECT_NE(refusal("wide.toml").find("wide.toml: radius must be between 0 and 500px"),
            std::string::npos)
      << refusal("wide.toml");
  EXPECT_NE(refusal("unit.toml").find("PRM_RadiusX must be a number"), std::string::npos);
  EXPECT_NE(refusal("gone.toml").find("gone.toml"), std::string::npos);
  EXPECT_EQ(document_.UndoStack()->count(), 0);
  EXPECT_TRUE(document_.File().empty());
}

TEST_F(LookDocumentFiles, OfPresetsLeaveWhatIsSaidOfThePictures) {
  document_.SetText("spread", "disc.png", "");
  document_.SetText("pixel-aspect", "2:1", "");
  document_.SetText("rotation", "30", "");

  document_.UsePreset("six-blades");

  Look expected;
  expected["shape"] = "polygon";
  expected["sides"] = "6";
  expected["match"] = "on";
  expected["radius-x"] = "3%";
  expected["radius-y"] = "3%";
  expected["rotation"] = "15";
  expected["emphasis"] = "50";
  expected["spread"] = "disc.png";
  expected["pixel-aspect"] = "2:1";
  EXPECT_EQ(document_.CurrentLook(), expected);
}

}  // namespace
}  // namespace glimmerhost
