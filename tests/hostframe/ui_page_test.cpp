// SPDX-License-Identifier: BSD-3-Clause
// The page: which calls a UI instance makes on the host's store, dialog and result, in which
// order.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "tests/support/colour_recorder.h"
#include "tests/support/page_stage.h"

namespace {

using lx_test::cPtr;
using lx_test::Log;
using lx_test::PageStage;
using lx_test::operator+;

const Log kElevenReads = {
    "getFloat(PRM_RadiusX,0)",    "getFloat(PRM_RadiusY,0)",   "getFloat(PRM_Sides,0)",
    "getFloat(PRM_Rotation,0)",   "getFloat(PRM_Emphasis,0)",  "getBool(PRM_EmphAlpha,0)",
    "getBool(PRM_Precision,0)",   "getFloat(PRM_Center_X,0)",  "getFloat(PRM_Center_Y,0)",
    "getFloat(PRM_RadiusPSF1,0)", "getFloat(PRM_RadiusPSF2,0)"};

const Log kHide = {"setWidgetVisible(lxColourButtonWidgetC,0)",
                   "setWidgetVisible(lxColourBoxWidgetC,0)"};

using UiPage = lx_test::PageTest;

// What the store and the host see of an opened page of nothing but zeros.
Log Commits(const std::string& shape, const std::string& match) {
  return {"setList(PRM_Shape," + shape + ")", "setBool(PRM_Match," + match + ")",
          "setFloat(PRM_RadiusX,0.000000)",   "setFloat(PRM_RadiusY,0.000000)",
          "setFloat(PRM_Sides,0.000000)",     "setFloat(PRM_Rotation,0.000000)",
          "setFloat(PRM_Emphasis,0.000000)",  "setBool(PRM_EmphAlpha,0)",
          "setBool(PRM_Precision,0)",         "setFloat(PRM_Center_X,0.000000)",
          "setFloat(PRM_Center_Y,0.000000)",  "setFloat(PRM_RadiusPSF1,0.000000)",
          "setFloat(PRM_RadiusPSF2,0.000000)"};
}

TEST_F(UiPage, IsMadeWithoutACallOnTheHost) { EXPECT_EQ(Log{}, Calls()); }

TEST_F(UiPage, JoinsTwelveControlsToTheStoreUnderTheirKeys) {
  struct Case {
    const lx::ControlLX& control;
    quantel::wstring key;
  };
  auto& effect = adapter->effect;
  for (const Case& c :
       {Case{effect.shape, u"PRM_Shape"}, Case{effect.match, u"PRM_Match"},
        Case{effect.radiusX, u"PRM_RadiusX"}, Case{effect.radiusY, u"PRM_RadiusY"},
        Case{effect.sides, u"PRM_Sides"}, Case{effect.rotation, u"PRM_Rotation"},
        Case{effect.emphasis, u"PRM_Emphasis"}, Case{effect.emphAlpha, u"PRM_EmphAlpha"},
        Case{effect.precision, u"PRM_Precision"}, Case{effect.center, u"PRM_Center"},
        Case{effect.radiusPSF1, u"PRM_RadiusPSF1"}, Case{effect.radiusPSF2, u"PRM_RadiusPSF2"}}) {
    ASSERT_NE(nullptr, c.control.key);
    EXPECT_EQ(c.key, *c.control.key);
    EXPECT_EQ(&adapter->params, c.control.host);
  }
}

TEST_F(UiPage, JoinsTheOverlaysToTheirControls) {
  auto& effect = adapter->effect;
  EXPECT_EQ(&adapter->overlayData, effect.data);
  EXPECT_EQ(1.0F, effect.zoom);
  EXPECT_EQ(0, effect.dragging);
  struct Case {
    const lx::OverlayControlLX& overlay;
    const lx::ControlLX* target;
    const lx::ControlLX* target2;
    int blue;
  };
  for (const Case& c : {Case{effect.centerOverlay, &effect.center, nullptr, 65535},
                        Case{effect.innerRingOverlay, &effect.radiusPSF1, &effect.radiusPSF1, 0},
                        Case{effect.outerRingOverlay, &effect.radiusPSF2, &effect.radiusPSF2, 0}}) {
    EXPECT_EQ(&adapter->overlayData, c.overlay.data);
    EXPECT_EQ(c.target, c.overlay.target);
    EXPECT_EQ(c.target2, c.overlay.target2);
    EXPECT_EQ(&effect.dragging, c.overlay.dragFlag);
    EXPECT_EQ(65535, c.overlay.red);
    EXPECT_EQ(65535, c.overlay.green);
    EXPECT_EQ(c.blue, c.overlay.blue);
    EXPECT_EQ(65535, c.overlay.alpha);
    EXPECT_EQ(static_cast<lx::OverlayLX*>(&effect), c.overlay.owner);
  }
}

TEST_F(UiPage, TakesItsTwoClips) {
  ui->setInputs(inputs);

  EXPECT_EQ((Log{"inputs.mainInput", "inputs.namedInput(PRM_Spread)"}), Calls());
  EXPECT_EQ(&adapter->sourceClip, adapter->effect.sourcePort.clip);
  EXPECT_EQ(&adapter->spreadClip, adapter->effect.spreadPort.clip);
  EXPECT_EQ(inputs->main.Object(), adapter->sourceClip.Object());
  EXPECT_EQ(inputs->spread.Object(), adapter->spreadClip.Object());
  EXPECT_EQ(1, inputs->Count());
}

TEST_F(UiPage, KeepsItsClipsWhereItGetsNoInputs) {
  ui->setInputs(inputs);
  ui->setInputs(nullptr);

  EXPECT_EQ(inputs->main.Object(), adapter->sourceClip.Object());
  EXPECT_EQ(inputs->spread.Object(), adapter->spreadClip.Object());
}

// An argument that is made in the call is the parameter itself and lives to the end of the
// whole expression, so what the call leaves is looked at inside of it.
TEST_F(UiPage, LetsGoOfItsInputsBeforeItReturns) {
  auto* given = new lx_test::FakeInputs(&host.log);
  given->notesItsEnd = true;

  const Log atReturn = (ui->setInputs(cPtr<qplugin::iQpluginInputs>(given)), Calls());

  EXPECT_EQ((Log{"inputs.mainInput", "inputs.namedInput(PRM_Spread)", "~inputs"}), atReturn);
}

TEST_F(UiPage, HoldsStoreAndResultOnceWhenItReturns) {
  auto* store = new lx_test::FakeParams(&host.log);
  auto* side = new lx_test::FakeResult(&host.log);

  const int holdsStore = (ui->setParams(cPtr<qplugin::iQpluginParams>(store)), store->Count());
  const int holdsResult = (ui->setResult(cPtr<qplugin::iQpluginUIResult>(side)), side->Count());

  EXPECT_EQ(1, holdsStore);
  EXPECT_EQ(1, holdsResult);
}

// The shape held at first is 1, so "A" goes off whatever the list says.
TEST_F(UiPage, ReadsTheWholeStoreWhenItGetsIt) {
  params->numbers["PRM_Shape"] = 2;
  params->numbers["PRM_Match"] = 1;

  ui->setParams(params);

  EXPECT_EQ((Log{"getList(PRM_Shape)", "setBool(PRM_Shape_A,0)", "setBool(PRM_Shape_C,1)",
                 "getBool(PRM_Match,0)", "setBool(PRM_Match_A,1)", "setBool(PRM_Match_B,0)"} +
             kElevenReads),
            Calls());
  EXPECT_EQ(3, adapter->effect.shape.value);
  EXPECT_TRUE(adapter->effect.match.value);
  EXPECT_EQ(adapter, adapter->effect.uiOwner);
  EXPECT_TRUE(adapter->effect.radiusY.disabled);
  EXPECT_TRUE(adapter->effect.center.disabled);
  EXPECT_FALSE(adapter->effect.sides.disabled);
  EXPECT_EQ(2, params->Count());
}

TEST_F(UiPage, KeepsWhatItReads) {
  int n = 1;
  for (const char* key :
       {"PRM_RadiusX", "PRM_RadiusY", "PRM_Sides", "PRM_Rotation", "PRM_Emphasis", "PRM_EmphAlpha",
        "PRM_Precision", "PRM_Center_X", "PRM_Center_Y", "PRM_RadiusPSF1", "PRM_RadiusPSF2"}) {
    params->numbers[key] = n++ + 0.1;
  }

  ui->setParams(params);

  const auto& effect = adapter->effect;
  EXPECT_EQ(1.1, effect.radiusX.value);
  EXPECT_EQ(2.1, effect.radiusY.value);
  EXPECT_EQ(3, effect.sides.value);
  EXPECT_EQ(4.1, effect.rotation.value);
  EXPECT_EQ(5.1, effect.emphasis.value);
  EXPECT_TRUE(effect.emphAlpha.value);
  EXPECT_TRUE(effect.precision.value);
  EXPECT_EQ(8.1, effect.center.x);
  EXPECT_EQ(9.1, effect.center.y);
  EXPECT_EQ(10.1, effect.radiusPSF1.value);
  EXPECT_EQ(11.1, effect.radiusPSF2.value);
}

TEST_F(UiPage, SwitchesAnUnchangedShapeOffAndOn) {
  params->numbers["PRM_Shape"] = 1;
  ui->setParams(params);
  Calls();

  ui->setParams(params);

  const Log calls = Calls();
  EXPECT_EQ("setBool(PRM_Shape_B,0)", calls[1]);
  EXPECT_EQ("setBool(PRM_Shape_B,1)", calls[2]);
}

TEST_F(UiPage, GivesBackItsStoreForNone) {
  ui->setParams(params);
  adapter->effect.uiOwner = nullptr;
  Calls();

  ui->setParams(nullptr);

  EXPECT_EQ(Log{}, Calls());
  EXPECT_EQ(1, params->Count());
  EXPECT_EQ(adapter, adapter->effect.uiOwner);
}

TEST_F(UiPage, MakesItsTwoWidgetsHidden) {
  ui->setResult(result);

  EXPECT_EQ((Log{"result.timeline", "timeline.frameCount", "result.dialog",
                 "addButton(lxColourButtonWidgetC,lxColourButton_PRM,30 0 10 1,Close Colour Box)",
                 "setWidgetVisible(lxColourButtonWidgetC,0)",
                 "addColourBox(lxColourBoxWidgetC,lxColourBox_PRM,30 1 10 5,1 1 1)",
                 "setWidgetVisible(lxColourBoxWidgetC,0)"}),
            Calls());
  EXPECT_EQ(2, result->Count());
  EXPECT_EQ(1, result->dialogObject->Count());
  EXPECT_EQ(1, result->timelineObject->Count());
}

TEST_F(UiPage, TakesItsRangeFromTheTimeline) {
  ui->setResult(result);

  EXPECT_EQ(1.0, adapter->effect.firstTime);
  EXPECT_EQ(250.0, adapter->effect.lastTime);
}

TEST_F(UiPage, MakesItsWidgetsAgainForASecondResult) {
  ui->setResult(result);
  const Log first = Calls();

  ui->setResult(result);

  EXPECT_EQ(first, Calls());
}

TEST_F(UiPage, MakesNoWidgetsWithoutADialog) {
  result->dialogObject.Reset();
  Calls();

  ui->setResult(result);

  EXPECT_EQ((Log{"result.timeline", "timeline.frameCount", "result.dialog"}), Calls());
}

TEST_F(UiPage, TakesNoResult) {
  ui->setResult(result);
  Calls();

  ui->setResult(nullptr);

  EXPECT_EQ(Log{}, Calls());
  EXPECT_EQ(1, result->Count());
}

TEST_F(UiPage, KeepsItsRangeWithoutATimeline) {
  ui->setResult(cPtr<qplugin::iQpluginUIResult>(new lx_test::FakePlainResult(&host.log)));
  EXPECT_EQ(Log{"result.dialog"}, Calls());
  result->timelineObject.Reset();
  ui->setResult(result);

  EXPECT_EQ(0.0, adapter->effect.firstTime);
  EXPECT_EQ(0.0, adapter->effect.lastTime);
}

TEST_F(UiPage, ReadsTheOneParameterThatChangedAndAsksForAnUpdate) {
  Open();
  for (const std::string& read : kElevenReads) {
    const std::string key = read.substr(read.find('(') + 1, read.find(',') - read.find('(') - 1);
    ui->parameterChanged(quantel::wstring(key.begin(), key.end()));
    EXPECT_EQ((Log{"result.dialog", read, "update"}), Calls());
  }
}

TEST_F(UiPage, KeepsTheOneParameterThatChanged) {
  Open();
  params->numbers["PRM_Rotation"] = 12.5;
  params->numbers["PRM_Emphasis"] = 7.5;

  ui->parameterChanged(u"PRM_Rotation");

  EXPECT_EQ(12.5, adapter->effect.rotation.value);
  EXPECT_EQ(0.0, adapter->effect.emphasis.value);
}

TEST_F(UiPage, CutsSidesTowardsNought) {
  Open();
  struct Case {
    double stored;
    int sides;
  };
  constexpr int kSmallest = std::numeric_limits<int>::min();
  for (const Case& c : {Case{5.9, 5}, Case{-0.5, 0}, Case{-5.9, -5}, Case{1e30, kSmallest},
                        Case{std::nan(""), kSmallest}}) {
    params->numbers["PRM_Sides"] = c.stored;
    ui->parameterChanged(u"PRM_Sides");
    EXPECT_EQ(c.sides, adapter->effect.sides.value) << c.stored;
  }
}

TEST_F(UiPage, ReadsNothingForOtherKeysAndAsksForAnUpdate) {
  Open();
  for (const char16_t* key : {u"PRM_Center", u"PRM_Nonsense", u"", u"prm_shape", u"PRM_Shape_A",
                              u"lxColourBox_PRM", u"PRM_Spread"}) {
    ui->parameterChanged(key);
    EXPECT_EQ((Log{"result.dialog", "update"}), Calls());
  }
}

TEST_F(UiPage, HearsOfNoChangeWithoutAStore) {
  ui->setResult(result);
  Calls();

  for (const char16_t* key : {u"PRM_Shape", u"PRM_RadiusX", u"PRM_GlimmerFocus_Page",
                              u"lxColourButton_PRM", u"PRM_Nonsense"}) {
    ui->parameterChanged(key);
  }

  EXPECT_EQ(Log{}, Calls());
}

TEST_F(UiPage, FollowsAChangeWithoutAResult) {
  ui->setParams(params);
  Calls();

  ui->parameterChanged(u"PRM_RadiusX");
  EXPECT_EQ(Log{"getFloat(PRM_RadiusX,0)"}, Calls());
  ui->parameterChanged(u"lxColourButton_PRM");
  ui->parameterChanged(u"PRM_GlimmerFocus_Page");
  EXPECT_EQ(Log{}, Calls());
}

TEST_F(UiPage, SwitchesThePartsOfTheShapeAndWritesEverythingBack) {
  Open();
  params->numbers["PRM_Shape"] = 3;

  ui->parameterChanged(u"PRM_Shape");

  EXPECT_EQ((Log{"result.dialog", "getList(PRM_Shape)", "setBool(PRM_Shape_A,0)",
                 "setBool(PRM_Shape_D,1)"} +
             Commits("3", "0") + Log{"update"}),
            Calls());
  EXPECT_TRUE(adapter->effect.radiusX.disabled);
  EXPECT_FALSE(adapter->effect.center.disabled);
}

TEST_F(UiPage, SwitchesThePartsOfMatchAndWritesEverythingBack) {
  params->numbers["PRM_Shape"] = 2;
  Open();
  EXPECT_FALSE(adapter->effect.radiusY.disabled);
  adapter->effect.sides.disabled = true;
  params->numbers["PRM_Match"] = 1;

  ui->parameterChanged(u"PRM_Match");

  EXPECT_EQ((Log{"result.dialog", "getBool(PRM_Match,0)", "setBool(PRM_Match_A,1)",
                 "setBool(PRM_Match_B,0)"} +
             Commits("2", "1") + Log{"update"}),
            Calls());
  EXPECT_TRUE(adapter->effect.radiusY.disabled);
  EXPECT_TRUE(adapter->effect.sides.disabled);  // the other flags stay
}

// What the controls hold goes over what the store had meanwhile.
TEST_F(UiPage, ReadsNothingButTheShapeBeforeItWritesEverythingBack) {
  Open();
  params->numbers["PRM_Match"] = 1;
  params->numbers["PRM_RadiusX"] = 0.5;
  params->numbers["PRM_Shape"] = 2;

  ui->parameterChanged(u"PRM_Shape");

  EXPECT_FALSE(adapter->effect.match.value);
  EXPECT_EQ(0.0, params->numbers["PRM_Match"]);
  EXPECT_EQ(0.0, params->numbers["PRM_RadiusX"]);
}

TEST_F(UiPage, DisablesTheSecondRadiusByItsShapeWhenMatchChanges) {
  struct Case {
    int entry;
    bool match;
    bool disabled;
  };
  for (const Case& c :
       {Case{0, false, true}, Case{0, true, true}, Case{1, false, false}, Case{1, true, false},
        Case{2, false, false}, Case{2, true, true}, Case{3, false, true}, Case{3, true, true}}) {
    params->numbers["PRM_Shape"] = c.entry;
    ui->setParams(params);
    params->numbers["PRM_Match"] = c.match ? 1.0 : 0.0;
    adapter->effect.radiusY.disabled = !c.disabled;

    ui->parameterChanged(u"PRM_Match");

    EXPECT_EQ(c.disabled, adapter->effect.radiusY.disabled) << c.entry << c.match;
  }
}

TEST_F(UiPage, SwitchesMatchOffAgain) {
  params->numbers["PRM_Match"] = 1;
  Open();
  params->numbers["PRM_Match"] = 0;

  ui->parameterChanged(u"PRM_Match");

  const Log calls = Calls();
  EXPECT_EQ("setBool(PRM_Match_A,0)", calls[2]);
  EXPECT_EQ("setBool(PRM_Match_B,1)", calls[3]);
}

TEST_F(UiPage, WritesNumbersBackAsFloats) {
  params->numbers["PRM_RadiusX"] = 0.1;
  params->numbers["PRM_RadiusPSF2"] = 1e300;
  Open();

  ui->parameterChanged(u"PRM_Shape");

  EXPECT_EQ(static_cast<double>(0.1F), params->numbers["PRM_RadiusX"]);
  EXPECT_TRUE(std::isinf(params->numbers["PRM_RadiusPSF2"]));
  EXPECT_EQ(0.1, adapter->effect.radiusX.value);
}

TEST_F(UiPage, CountsLettersOnForShapesThatItDoesNotKnow) {
  params->numbers["PRM_Shape"] = 3;
  Open();
  const bool center = adapter->effect.center.disabled;
  params->numbers["PRM_Shape"] = 4;

  ui->parameterChanged(u"PRM_Shape");

  const Log calls = Calls();
  EXPECT_EQ("setBool(PRM_Shape_D,0)", calls[2]);
  EXPECT_EQ("setBool(PRM_Shape_E,1)", calls[3]);
  EXPECT_EQ("setList(PRM_Shape,4)", calls[4]);
  EXPECT_EQ(5, adapter->effect.shape.value);
  EXPECT_EQ(center, adapter->effect.center.disabled);
  ui->parameterChanged(u"PRM_Match");
  EXPECT_EQ(center, adapter->effect.center.disabled);
}

// 2147483647 + 1 is the smallest number, whose low 16 bits are 0: the letter is "@".
TEST_F(UiPage, HasALetterForTheLargestEntry) {
  Open();
  params->numbers["PRM_Shape"] = std::numeric_limits<int>::max();

  ui->parameterChanged(u"PRM_Shape");

  EXPECT_EQ("setBool(PRM_Shape_@,1)", Calls()[3]);
  EXPECT_EQ(std::numeric_limits<int>::min(), adapter->effect.shape.value);
}

TEST_F(UiPage, ClosesTheColourBoxWhenThePageIsUsedWithoutAnUpdate) {
  Open();

  ui->parameterChanged(u"PRM_GlimmerFocus_Page");

  EXPECT_EQ((Log{"result.dialog"} + kHide), Calls());
}

TEST_F(UiPage, TakesThePageKeyForAnyOtherWithoutADialog) {
  Open();
  result->dialogObject.Reset();
  Calls();

  ui->parameterChanged(u"PRM_GlimmerFocus_Page");

  EXPECT_EQ((Log{"result.dialog", "update"}), Calls());
}

TEST_F(UiPage, ClosesTheColourBoxByItsButton) {
  Open();

  ui->parameterChanged(u"lxColourButton_PRM");

  EXPECT_EQ((Log{"result.dialog", "result.dialog"} + kHide + Log{"update"}), Calls());
}

TEST_F(UiPage, TakesAButtonWithoutADialog) {
  Open();
  result->dialogObject.Reset();
  Calls();

  ui->parameterChanged(u"lxColourButton_PRM");

  EXPECT_EQ((Log{"result.dialog", "result.dialog", "update"}), Calls());
}

TEST_F(UiPage, OpensTheColourBoxAndThenReadsIt) {
  Open();

  ui4->colourRequest(7);
  EXPECT_EQ(
      (Log{"result.dialog", "isWidgetVisible(lxColourBoxWidgetC)",
           "setWidgetVisible(lxColourButtonWidgetC,1)", "setWidgetVisible(lxColourBoxWidgetC,1)"}),
      Calls());
  const auto numbers = params->numbers;
  ui4->colourRequest(7);

  EXPECT_EQ((Log{"result.dialog", "isWidgetVisible(lxColourBoxWidgetC)",
                 "getColour(lxColourBox_PRM,1 1 1)"}),
            Calls());
  EXPECT_EQ(numbers, params->numbers);
}

TEST_F(UiPage, AsksTheColourOfTheOpenBoxForItsRedGreenAndBlueOnce) {
  static constexpr std::uint32_t kMark = 0x5EED;
  Open();
  params->colourMark = kMark;
  lx_test::RgbAsks().clear();
  const auto asked = [] {
    const auto& asks = lx_test::RgbAsks();
    return std::count(asks.begin(), asks.end(), kMark);
  };

  ui4->colourRequest(7);
  EXPECT_EQ(0, asked());
  ui4->colourRequest(7);

  EXPECT_EQ(1, asked());
}

TEST_F(UiPage, OpensNoColourBoxWithoutStoreResultOrDialog) {
  ui4->colourRequest(0);
  ui->setParams(params);
  Calls();
  ui4->colourRequest(0);
  EXPECT_EQ(Log{}, Calls());

  ui->setResult(result);
  result->dialogObject.Reset();
  Calls();
  ui4->colourRequest(0);
  EXPECT_EQ(Log{"result.dialog"}, Calls());

  ui->setParams(nullptr);
  ui4->colourRequest(0);
  EXPECT_EQ(Log{}, Calls());
}

TEST_F(UiPage, HasOperationsThatDoNothing) {
  Open();

  ui->empty1();
  ui->empty2();
  ui->empty3();
  ui->empty4();
  ui4->empty1(1);
  ui4->empty2(2);
  ui4->empty3(3);
  ui4->empty4();
  ui4->empty5();

  EXPECT_EQ(Log{}, Calls());
}

TEST_F(UiPage, LetsGoOfEverythingInItsOrder) {
  Open();
  ui->drawOverlays();
  // The last references are the instance's own from here on.
  result->formatObject->notesItsEnd = true;
  result->surfaceObject.Reset();
  result->formatObject.Reset();
  result.Reset();
  params.Reset();
  inputs->spread.Reset();
  inputs->main.Reset();
  Calls();

  Close();

  // The result takes with it what it hands out.
  EXPECT_EQ((Log{"~result", "~timeline", "~dialog", "~params", "~spread", "~source", "~format",
                 "~surface", "instanceDestroyed"}),
            Calls());
}

TEST_F(UiPage, PassesTheHostsExceptionsOn) {
  Open();
  host.log.throwAt = "update";

  EXPECT_THROW(ui->parameterChanged(u"PRM_RadiusX"), lx_test::HostFault);
  EXPECT_EQ(1, result->dialogObject->Count());
}

TEST_F(UiPage, NamesItselfAndItsRenderClass) {
  const auto render = allplugins::renderClassGuid;
  allplugins::savedModuleText = u"what the host said";

  EXPECT_EQ(0x2FD3AFECU, ui->uiGuid().group1);
  EXPECT_EQ(0x1FD3AFECU, ui->renderGuid().group1);
  EXPECT_EQ(render.tail, ui->renderGuid().tail);
  EXPECT_EQ(ui->classInfo()->guid().group1, ui->uiGuid().group1);
  EXPECT_EQ(u"what the host said", ui->moduleText());
  allplugins::savedModuleText.clear();
}

}  // namespace
