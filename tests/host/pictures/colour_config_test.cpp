// SPDX-License-Identifier: BSD-3-Clause
// Screens and the ways to show pictures on them, of a small configuration.
#include "host/pictures/colour_config.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::ColourConfig;
using glimmerhost::ColourTransform;
using glimmerhost::Failure;
using Names = std::vector<std::string>;

// To the reference, which is linear: twice the value, and red and blue exchanged. The usual view of
// the paper stands behind another.
constexpr const char* kConfig = R"(ocio_profile_version: 2
search_path: ""
roles:
  scene_linear: Linear
file_rules:
  - !<Rule> {name: Default, colorspace: Linear}
displays:
  screen:
    - !<View> {name: plain, colorspace: Linear}
    - !<View> {name: dim, colorspace: Doubled}
  paper:
    - !<View> {name: wrong, colorspace: Exchanged}
    - !<View> {name: right, colorspace: Linear}
active_displays: [paper, screen]
active_views: [right, plain, dim, wrong]
colorspaces:
  - !<ColorSpace>
    name: Linear
  - !<ColorSpace>
    name: Doubled
    to_scene_reference: !<MatrixTransform> {matrix: [2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}
  - !<ColorSpace>
    name: Exchanged
    to_scene_reference: !<MatrixTransform> {matrix: [0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1]}
)";

class ColourConfigOfScreens : public testing::Test {
 public:
  ColourConfigOfScreens() {
    std::ofstream(folder / "config.ocio") << kConfig;
    config = ColourConfig::Load(folder / "config.ocio");
  }

  static std::vector<float> Shown(const std::shared_ptr<const ColourTransform>& path) {
    std::vector<float> pixel{0.5F, 0.25F, 1.0F};
    path->Apply(&pixel);
    return pixel;
  }

  lx_test::ScratchFolder folder;
  std::unique_ptr<const ColourConfig> config;
};

TEST_F(ColourConfigOfScreens, NamesThemAndTheirViewsTheUsualOnesFirst) {
  EXPECT_EQ((Names{"paper", "screen"}), config->Displays());
  EXPECT_EQ((Names{"right", "wrong"}), config->Views("paper"));
  EXPECT_EQ((Names{"plain", "dim"}), config->Views("screen"));
  EXPECT_EQ(Names{}, config->Views("wall"));
}

TEST_F(ColourConfigOfScreens, BringsColoursFromASpaceToAView) {
  EXPECT_EQ((std::vector<float>{0.25F, 0.125F, 0.5F}),
            Shown(config->DisplayPath("scene_linear", "screen", "dim")));
  EXPECT_EQ((std::vector<float>{1.0F, 0.5F, 2.0F}),
            Shown(config->DisplayPath("Doubled", "screen", "plain")));
  EXPECT_EQ((std::vector<float>{1.0F, 0.25F, 0.5F}),
            Shown(config->DisplayPath("Linear", "paper", "wrong")));
}

TEST_F(ColourConfigOfScreens, HasNoTransformWhereAViewShowsColoursAsTheyAre) {
  EXPECT_EQ(nullptr, config->DisplayPath("Linear", "screen", "plain"));
}

TEST_F(ColourConfigOfScreens, FailsForAViewThatIsNotThere) {
  EXPECT_THROW(config->DisplayPath("Linear", "screen", "right side up"), Failure);
  EXPECT_THROW(config->DisplayPath("Linear", "wall", "plain"), Failure);
}

}  // namespace
