// SPDX-License-Identifier: BSD-3-Clause
// The host's side of a page: what a module finds there, and what others hear of it.
#include "host/module/page_host.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "hostframe/interfaces/colour.h"
#include "tests/host/module/module_page.h"

namespace {

using glimmerhost::Dialog;
using glimmerhost::Widget;
using host_test::Calls;
using quantel::cColour;

class UpdateListener : public host_test::ModulePage {
 public:
  // Opened, with a listener that is noted among the calls.
  void OpenListening() {
    result->ListenToUpdates([this] { trace.Step("heard"); });
    Open();
    ui->drawOverlays();
  }

  // What is called and heard when the host does something, in order.
  template <class Act>
  Calls CallsOfAct(const Act& act) {
    (void)AllCalls();
    act();
    return AllCalls();
  }

  // Updates and what is heard of them, of an act that calls more.
  template <class Act>
  Calls UpdatesOf(const Act& act) {
    Calls calls = CallsOfAct(act);
    std::erase_if(calls, [](const std::string& call) {
      return call != "result.update()" && call != "heard";
    });
    return calls;
  }
};

const Calls kOneUpdate{"result.update()", "heard"};

TEST_F(UpdateListener, HearsAnUpdateWithinTheCallThatTheModuleMakes) {
  OpenListening();

  EXPECT_EQ((Calls{"result.dialog()", "store.getFloat(\"PRM_Sides\", 0) = 6", "result.update()",
                   "heard"}),
            CallsOfAct([this] { ui->parameterChanged(u"PRM_Sides"); }));
}

TEST_F(UpdateListener, HearsNothingWhereTheModuleUpdatesNothing) {
  EXPECT_EQ(Calls{}, UpdatesOf([this] { OpenListening(); }));
  EXPECT_EQ(Calls{}, UpdatesOf([this] { ui->drawOverlays(); }));
  // The page itself.
  EXPECT_EQ(Calls{}, UpdatesOf([this] { ui->parameterChanged(u"PRM_GlimmerFocus_Page"); }));
  // Nothing is held.
  EXPECT_EQ(Calls{}, UpdatesOf([this] { ui->mouseMove({50.0F, 60.0F}); }));
}

TEST_F(UpdateListener, HearsTheMouseWhileItDragsAndWhereItLetsGo) {
  OpenListening();

  EXPECT_EQ(Calls{}, UpdatesOf([this] { ui->mouseDown({50.0F, 60.0F}); }));
  EXPECT_EQ(kOneUpdate, UpdatesOf([this] { ui->mouseMove({70.0F, 60.0F}); }));
  EXPECT_EQ(kOneUpdate, UpdatesOf([this] { ui->mouseUp({80.0F, 60.0F}); }));
}

// What was drawn for an update is complete when it is heard.
TEST_F(UpdateListener, FindsTheStrokesOfTheMomentWhenItHears) {
  std::vector<float> crosshair;
  OpenListening();
  result->ListenToUpdates([&] {
    crosshair.push_back(std::get<glimmerhost::OverlayLine>(surface->Strokes().at(0)).from.x);
  });

  ui->mouseDown({50.0F, 60.0F});
  ui->mouseMove({70.0F, 60.0F});
  ui->mouseMove({90.0F, 60.0F});

  EXPECT_EQ((std::vector<float>{80.0F, 100.0F}), crosshair);
}

TEST_F(UpdateListener, MayBeNobody) {
  result->ListenToUpdates([] { FAIL() << "nobody listens any more"; });
  result->ListenToUpdates(nullptr);
  Open();

  EXPECT_EQ(Calls{"result.update()"}, UpdatesOf([this] { ui->parameterChanged(u"PRM_Sides"); }));
}

TEST_F(UpdateListener, IsCalledOnTheThreadThatCalledTheModule) {
  std::thread::id heardOn;
  result->ListenToUpdates([&] { heardOn = std::this_thread::get_id(); });
  Open();

  std::thread caller([this] { ui->parameterChanged(u"PRM_Sides"); });
  const std::thread::id callersOwn = caller.get_id();
  caller.join();

  EXPECT_EQ(callersOwn, heardOn);
}

TEST_F(UpdateListener, ThrowsThroughTheModule) {
  result->ListenToUpdates([] { throw std::runtime_error("heard"); });
  Open();

  EXPECT_THROW(ui->parameterChanged(u"PRM_Sides"), std::runtime_error);
}

TEST(PageDialog, KeepsWidgetsInTheOrderOfTheirMaking) {
  Dialog dialog;
  dialog.addButton(u"W1", u"K1", {}, u"Press me");
  dialog.addColourBox(u"W2", u"K2", {}, cColour::kWhite);

  ASSERT_EQ(2U, dialog.Widgets().size());
  EXPECT_EQ("W1", dialog.Widgets()[0].name);
  EXPECT_EQ("K1", dialog.Widgets()[0].key);
  EXPECT_EQ("Press me", dialog.Widgets()[0].label);
  EXPECT_EQ("W2", dialog.Widgets()[1].name);
  EXPECT_EQ("K2", dialog.Widgets()[1].key);
  EXPECT_EQ("", dialog.Widgets()[1].label);
}

TEST(PageDialog, GivesAWidgetThatIsMadeAgainItsOwnPlaceAndShowsIt) {
  Dialog dialog;
  dialog.addButton(u"W1", u"K1", {}, u"Press me");
  dialog.addColourBox(u"W2", u"K2", {}, cColour::kWhite);
  dialog.setWidgetVisible(u"W1", false);

  dialog.addButton(u"W1", u"K3", {}, u"Press me now");

  ASSERT_EQ(2U, dialog.Widgets().size());
  EXPECT_EQ("K3", dialog.Widgets()[0].key);
  EXPECT_EQ("Press me now", dialog.Widgets()[0].label);
  EXPECT_TRUE(dialog.isWidgetVisible(u"W1"));
}

TEST(PageDialog, ShowsAndHidesOneWidgetAlone) {
  Dialog dialog;
  dialog.addButton(u"W1", u"K1", {}, u"Press me");
  dialog.addButton(u"W2", u"K2", {}, u"And me");

  dialog.setWidgetVisible(u"W1", false);
  EXPECT_FALSE(dialog.isWidgetVisible(u"W1"));
  EXPECT_TRUE(dialog.isWidgetVisible(u"W2"));

  dialog.setWidgetVisible(u"W1", true);
  EXPECT_TRUE(dialog.isWidgetVisible(u"W1"));
}

TEST(PageDialog, KnowsNoWidgetThatNobodyHasMade) {
  Dialog dialog;
  dialog.setWidgetVisible(u"W1", true);

  EXPECT_FALSE(dialog.isWidgetVisible(u"W1"));
  EXPECT_EQ(nullptr, dialog.Find("W1"));
  EXPECT_EQ(0U, dialog.Widgets().size());
}

TEST(PageDialog, FindsAWidgetByItsName) {
  Dialog dialog;
  dialog.addButton(u"W1", u"K1", {}, u"Press me");
  dialog.addButton(u"W2", u"K2", {}, u"And me");

  const Widget* found = dialog.Find("W2");

  ASSERT_NE(nullptr, found);
  EXPECT_EQ("K2", found->key);
}

using PageResultParts = host_test::ModulePage;

TEST_F(PageResultParts, AreTheSameEachTimeUntilAnotherPictureIsShown) {
  EXPECT_EQ(surface.Object(), result->overlaySurface().Object());
  EXPECT_EQ(dialog.Object(), result->dialog().Object());
  EXPECT_EQ(1, result->timeline()->frameCount());
  EXPECT_FALSE(result->format());

  const quantel::cPtr<qplugin::iQpluginFormat> format(
      new glimmerhost::FrameFormat({2, 1}, {40, 30}));
  result->Show(format);

  EXPECT_EQ(format.Object(), result->format().Object());
}

}  // namespace
