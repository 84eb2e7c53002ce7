// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/live_page.h"

#include <gtest/gtest.h>

#include <QUndoStack>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/looks/keys.h"
#include "host/session/page_session.h"
#include "tests/host/viewer/window/viewing_stage.h"

namespace glimmerhost {
namespace {

using viewer_test::Ramp;

// The host's calls on the module, but for those that have it draw: a window does that whenever it
// shows something.
std::vector<std::string> CallsIn(const std::string& trace) {
  std::vector<std::string> calls;
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  ui") && line != "  ui.drawOverlays()") {
      calls.push_back(line);
    }
  }
  return calls;
}

// One module at a time is loaded in a process.
class LivePageOfAPicture : public testing::Test {
 public:
  std::shared_ptr<const LoadedFrame> LoadedPicture() const {
    auto frame = std::make_shared<LoadedFrame>();
    frame->picture = std::make_shared<Picture>(picture);
    frame->source = quantel::cPtr<FrameImage>(new FrameImage(picture));
    return frame;
  }

  // A person's acts in the window.
  void InWindow(const std::function<void(LivePage*)>& acts) {
    std::ostringstream out;
    Trace trace(out);
    const EffectModule module(choice, &trace);
    document.SetPicture(picture.width, picture.height, {1, 1});
    LivePage live(module, page, &document);
    live.Show(LoadedPicture(), 1);
    acts(&live);
    values = live.Effect()->Values();
    strokes = live.Effect()->Strokes().size();
    rows = live.Rows();
    calls = CallsIn(out.str());
  }

  // The same ones in a session.
  void InSession(const std::function<void(PageSession*)>& acts) {
    std::ostringstream out;
    Trace trace(out);
    const EffectModule module(choice, &trace);
    PageSession session(module, page.Defaults(), picture, {}, {1, 1});
    acts(&session);
    session.Draw();
    sessionValues = session.Values();
    sessionStrokes = session.Strokes().size();
    sessionCalls = CallsIn(out.str());
  }

  void ExpectTheSame() const {
    EXPECT_EQ(calls, sessionCalls);
    EXPECT_EQ(values, sessionValues);
    EXPECT_EQ(strokes, sessionStrokes);
  }

  ModuleChoice choice{viewer_test::fs::path(MODULE_FOLDER) / "fast" / MODULE_NAME,
                      lx::FindFootprint("fast")};
  Page page = Page::Load(PAGE);
  Picture picture = Ramp(200, 100, 1);
  LookDocument document{page, nullptr};
  std::map<std::string, Value> values;
  std::map<std::string, Value> sessionValues;
  std::size_t strokes = 0;
  std::size_t sessionStrokes = 0;
  std::vector<PageRow> rows;
  std::vector<std::string> calls;
  std::vector<std::string> sessionCalls;
};

TEST_F(LivePageOfAPicture, CallsTheModuleAsASessionDoes) {
  InWindow([this](LivePage* live) {
    document.SetText("shape", "image", "");
    document.SetText("emphasis", "12", "");
    live->Press({100, 50});
    live->Move({120, 44});
    live->Move({130, 40});
    live->Release({130, 40});
    document.SetText("shape", "polygon", "");
    document.SetText("match", "on", "");
  });
  InSession([](PageSession* session) {
    session->Set(kShapeKey, 3);
    session->Set(kEmphasisKey, 12.0);
    // Handles can be hit where they were drawn.
    session->Draw();
    session->Press({100, 50});
    session->Move({120, 44});
    session->Move({130, 40});
    session->Release({130, 40});
    session->Set(kShapeKey, 2);
    session->Set(kMatchKey, true);
  });
  ExpectTheSame();
}

TEST_F(LivePageOfAPicture, TakesADragIntoTheLookAsOneStepOfUndo) {
  InWindow([this](LivePage* live) {
    document.SetText("shape", "image", "");
    const int before = document.UndoStack()->count();
    live->Press({100, 50});
    live->Move({110, 45});
    live->Move({150, 25});
    live->Release({150, 25});
    // 150 of 200 from the left; 25 of 100 from the top, and so 75 from the bottom.
    EXPECT_EQ(std::get<double>(document.ValuesAt(1).at(kCenterXKey)), 0.75);
    EXPECT_EQ(std::get<double>(document.ValuesAt(1).at(kCenterYKey)), 0.75);
    EXPECT_EQ(document.UndoStack()->count(), before + 1);

    document.UndoStack()->undo();
    EXPECT_EQ(std::get<double>(live->Effect()->Values().at(kCenterXKey)), 0.5);
    EXPECT_EQ(std::get<double>(live->Effect()->Values().at(kCenterYKey)), 0.5);
  });
}

TEST_F(LivePageOfAPicture, LeavesTextsAloneThatTheModuleOnlyRounds) {
  InWindow([this](LivePage* live) {
    document.SetText("radius-x", "20px", "");
    document.SetText("shape", "polygon", "");
    // The module has written all values back as floats: a fifth is none.
    EXPECT_NE(std::get<double>(live->Effect()->Values().at(kRadiusXKey)), 0.2);
    EXPECT_EQ(document.TextOf("radius-x"), "20px");
    EXPECT_EQ(std::get<double>(document.ValuesAt(1).at(kRadiusXKey)), 0.2);
  });
}

TEST_F(LivePageOfAPicture, CountsTheMouseInPixelsOfTheScreen) {
  InWindow([this](LivePage* live) {
    document.SetText("shape", "image", "");
    live->SetScreenSize({800, 400});
    const auto isAt = [&](float x, float y) {
      for (const OverlayStroke& stroke : live->Effect()->Strokes()) {
        const auto* square = std::get_if<OverlayRectangle>(&stroke);
        if (square != nullptr && std::abs(square->rect.first + square->rect.third / 2 - x) <= 1 &&
            std::abs(square->rect.second + square->rect.fourth / 2 - y) <= 1) {
          return true;
        }
      }
      return false;
    };
    EXPECT_TRUE(isAt(400, 200));
    live->Press({400, 200});
    live->Move({200, 300});
    live->Release({200, 300});
    EXPECT_EQ(std::get<double>(document.ValuesAt(1).at(kCenterXKey)), 0.25);
    EXPECT_EQ(std::get<double>(document.ValuesAt(1).at(kCenterYKey)), 0.25);
    EXPECT_TRUE(isAt(200, 300));
  });
}

TEST_F(LivePageOfAPicture, HasTheRowsOfTheModulesOwnAnswers) {
  InWindow([this](LivePage*) { document.SetText("shape", "polygon", ""); });
  const auto row = [this](const std::string& name) {
    for (const PageRow& each : rows) {
      if (each.name == name) {
        return each;
      }
    }
    return PageRow{};
  };
  EXPECT_TRUE(row(kSidesKey).shown);
  EXPECT_FALSE(row(kCenterXKey).shown);
  EXPECT_TRUE(row(kRadiusYKey).enabled);
}

TEST_F(LivePageOfAPicture, SetsAKeyframeByADragOfWhatIsKeyframed) {
  InWindow([this](LivePage* live) {
    document.SetPicture(200, 100, {1, 9});
    document.SetText("shape", "image", "");
    document.SetText("center", "first=50%,50%; last=75%,50%", "");
    live->Press({100, 50});
    live->Move({60, 50});
    live->Release({60, 50});
    EXPECT_NEAR(std::get<double>(document.ValuesAt(1).at(kCenterXKey)), 0.3, 1e-7);
    EXPECT_EQ(std::get<double>(document.ValuesAt(9).at(kCenterXKey)), 0.75);
  });
}

}  // namespace
}  // namespace glimmerhost
