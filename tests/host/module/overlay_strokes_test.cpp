// SPDX-License-Identifier: BSD-3-Clause
// The strokes that a module's drawing leaves for others to read.
#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "hostframe/interfaces/colour.h"
#include "tests/host/module/module_page.h"

namespace {

using glimmerhost::OverlayColour;
using glimmerhost::OverlayLine;
using glimmerhost::OverlayRectangle;
using glimmerhost::OverlayStroke;
using glimmerhost::OverlaySurface;
using host_test::Calls;
using quantel::cColour;

std::string ColourName(const OverlayColour& colour) {
  return colour == OverlayColour{65535, 65535, 65535} ? "white"
         : colour == OverlayColour{65535, 65535, 0}   ? "yellow"
         : colour == OverlayColour{0, 0, 0}           ? "black"
                                                      : "other";
}

// "line 60 60 to 75 60 white", "frame 47.5 57.5 5 5 white", to six digits.
std::string Text(const OverlayStroke& stroke) {
  std::ostringstream out;
  if (const auto* line = std::get_if<OverlayLine>(&stroke)) {
    out << "line " << line->from.x << ' ' << line->from.y << " to " << line->to.x << ' '
        << line->to.y << ' ' << ColourName(line->colour);
  } else {
    const auto& rectangle = std::get<OverlayRectangle>(stroke);
    const quantel::cRect4& rect = rectangle.rect;
    out << (rectangle.filled ? "fill " : "frame ") << rect.first << ' ' << rect.second << ' '
        << rect.third << ' ' << rect.fourth << ' ' << ColourName(rectangle.colour);
  }
  return out.str();
}

Calls Texts(const std::vector<OverlayStroke>& strokes) {
  Calls texts;
  for (const OverlayStroke& stroke : strokes) {
    texts.push_back(Text(stroke));
  }
  return texts;
}

TEST(OverlayStrokes, AreWhatWasDrawnInItsOrder) {
  OverlaySurface surface;
  surface.beginDraw(true, 1);
  surface.fillRect({1.0F, 2.0F, 3.0F, 4.0F}, cColour::kWhite, cColour::kWhite);
  surface.drawLine({-5.5F, 6.0F}, {7.0F, 8.25F}, cColour::fromRGB(1.0F, 1.0F, 0.0F));
  surface.frameRect({1.0F, 2.0F, 0.0F, 4.0F}, cColour::kBlack);
  surface.endDraw();

  EXPECT_EQ((Calls{"fill 1 2 3 4 white", "line -5.5 6 to 7 8.25 yellow", "frame 1 2 0 4 black"}),
            Texts(surface.Strokes()));
}

TEST(OverlayStrokes, HaveColoursOfSixteenBits) {
  OverlaySurface surface;
  surface.drawLine({}, {}, cColour::fromRGB(0.5F, 2.0F, -1.0F));

  // Half of 65535, to the nearest.
  EXPECT_EQ((OverlayColour{32768, 65535, 0}),
            std::get<OverlayLine>(surface.Strokes().at(0)).colour);
}

TEST(OverlayStrokes, AreReplacedByTheNextPass) {
  OverlaySurface surface;
  surface.beginDraw(true, 1);
  surface.drawLine({1.0F, 1.0F}, {2.0F, 2.0F}, cColour::kWhite);
  surface.endDraw();

  surface.beginDraw(true, 1);
  surface.drawLine({3.0F, 3.0F}, {4.0F, 4.0F}, cColour::kWhite);
  surface.endDraw();
  EXPECT_EQ(Calls{"line 3 3 to 4 4 white"}, Texts(surface.Strokes()));

  surface.beginDraw(true, 1);
  surface.endDraw();
  EXPECT_EQ(Calls{}, Texts(surface.Strokes()));
}

class HandleStrokes : public host_test::ModulePage {
 public:
  Calls Drawn() {
    ui->drawOverlays();
    return Texts(surface->Strokes());
  }
};

// A crosshair about (50, 60), its arms from 10 to 25 pixels away, and two rings of 5 pixels about
// it, each with a handle to the right. The rings have ten segments of 36 degrees: cos 36 =
// 0.809017, sin 36 = 0.587785, cos 72 = 0.309017, sin 72 = 0.951057. The first segment and the
// closing one have no length. Of the outer ring every second is left out.
TEST_F(HandleStrokes, AreTheCrosshairAndTheRingsOfTheImageShape) {
  Open();

  EXPECT_EQ((Calls{"line 60 60 to 75 60 white",
                   "line 40 60 to 25 60 white",
                   "line 50 50 to 50 35 white",
                   "line 50 70 to 50 85 white",
                   "frame 47.5 57.5 5 5 white",
                   "frame 46.5 56.5 7 7 black",
                   "line 55 60 to 55 60 yellow",
                   "line 55 60 to 54.0451 57.0611 yellow",
                   "line 54.0451 57.0611 to 51.5451 55.2447 yellow",
                   "line 51.5451 55.2447 to 48.4549 55.2447 yellow",
                   "line 48.4549 55.2447 to 45.9549 57.0611 yellow",
                   "line 45.9549 57.0611 to 45 60 yellow",
                   "line 45 60 to 45.9549 62.9389 yellow",
                   "line 45.9549 62.9389 to 48.4549 64.7553 yellow",
                   "line 48.4549 64.7553 to 51.5451 64.7553 yellow",
                   "line 51.5451 64.7553 to 54.0451 62.9389 yellow",
                   "line 54.0451 62.9389 to 55 60 yellow",
                   "line 55 60 to 55 60 yellow",
                   "frame 52.5 57.5 5 5 yellow",
                   "frame 51.5 56.5 7 7 black",
                   "line 55 60 to 54.0451 57.0611 yellow",
                   "line 51.5451 55.2447 to 48.4549 55.2447 yellow",
                   "line 45.9549 57.0611 to 45 60 yellow",
                   "line 45.9549 62.9389 to 48.4549 64.7553 yellow",
                   "line 51.5451 64.7553 to 54.0451 62.9389 yellow",
                   "line 55 60 to 55 60 yellow",
                   "frame 52.5 57.5 5 5 yellow",
                   "frame 51.5 56.5 7 7 black"}),
            Drawn());
}

// A window can tell the handle that is held from the others.
TEST_F(HandleStrokes, FillTheHandleThatIsHeld) {
  Open();
  (void)Drawn();

  ui->mouseDown({49.0F, 61.0F});

  const Calls strokes = Texts(surface->Strokes());
  ASSERT_EQ(28U, strokes.size());
  EXPECT_EQ("fill 47.5 57.5 5 5 white", strokes[4]);
  EXPECT_EQ("frame 46.5 56.5 7 7 black", strokes[5]);
}

TEST_F(HandleStrokes, GoWithTheShapeThatHasThem) {
  Open();
  EXPECT_EQ(28U, Drawn().size());

  store->Set("PRM_Shape", 0);

  EXPECT_EQ(Calls{}, Drawn());
}

// As many as the module made, however long the rings are.
TEST_F(HandleStrokes, AreOneForEveryCallOnTheSurface) {
  values["PRM_RadiusPSF2"] = 0.9;
  Open();
  (void)AllCalls();

  const std::size_t drawn = Drawn().size();

  // All but the two that begin and end the pass.
  EXPECT_EQ(CallsOf("surface.").size(), drawn + 2);
}

}  // namespace
