// SPDX-License-Identifier: BSD-3-Clause
#include "effect/glimmer_blur.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

namespace {

using lx::GlimmerBlur;

std::vector<bool> Flags(const GlimmerBlur& effect) {
  return {effect.sides.disabled,      effect.rotation.disabled,  effect.radiusX.disabled,
          effect.radiusY.disabled,    effect.match.disabled,     effect.center.disabled,
          effect.radiusPSF1.disabled, effect.radiusPSF2.disabled};
}

TEST(ControlState, FollowsShapeAndMatch) {
  struct Case {
    int shape;
    bool match;
    std::vector<bool> flags;
  };
  for (const Case& c :
       {Case{1, false, {1, 1, 0, 1, 1, 1, 1, 1}}, Case{1, true, {1, 1, 0, 1, 1, 1, 1, 1}},
        Case{2, false, {1, 0, 0, 0, 1, 1, 1, 1}}, Case{2, true, {1, 0, 0, 0, 1, 1, 1, 1}},
        Case{3, false, {0, 0, 0, 0, 0, 1, 1, 1}}, Case{3, true, {0, 0, 0, 1, 0, 1, 1, 1}},
        Case{4, false, {1, 1, 1, 1, 1, 0, 0, 0}}, Case{4, true, {1, 1, 1, 1, 1, 0, 0, 0}}}) {
    GlimmerBlur effect;
    effect.shape.value = c.shape;
    effect.match.value = c.match;

    effect.UpdateControlState();

    EXPECT_EQ(c.flags, Flags(effect)) << c.shape << c.match;
    EXPECT_FALSE(effect.emphasis.disabled || effect.emphAlpha.disabled ||
                 effect.precision.disabled || effect.shape.disabled);
  }
}

TEST(ControlState, StaysForAnUnknownShape) {
  for (const int shape : {0, 5, -1}) {
    GlimmerBlur effect;
    effect.shape.value = 4;
    effect.UpdateControlState();
    const auto before = Flags(effect);
    effect.shape.value = shape;

    effect.UpdateControlState();

    EXPECT_EQ(before, Flags(effect));
  }
}

TEST(Effect, StartsWithItsInitialValues) {
  const GlimmerBlur effect;

  EXPECT_EQ(0.0, effect.frameTime);
  EXPECT_EQ(0.0, effect.firstTime);
  EXPECT_EQ(0.0, effect.lastTime);
  EXPECT_TRUE(effect.alphaEnabled);
  EXPECT_EQ(0, effect.dragging);
  EXPECT_EQ(nullptr, effect.uiOwner);
  EXPECT_EQ(nullptr, effect.renderOwner);
  EXPECT_EQ(nullptr, effect.parallelFn);
  EXPECT_EQ(nullptr, effect.sourcePort.image);
  EXPECT_EQ(nullptr, effect.sourcePort.clip);
  EXPECT_EQ(0, effect.spreadPort.frame);
  EXPECT_EQ(nullptr, effect.outputPort.image);
  EXPECT_EQ(1, effect.shape.value);
  EXPECT_EQ(0.0, effect.radiusX.value);
  EXPECT_EQ(0, effect.sides.value);
  EXPECT_FALSE(effect.match.value);
  EXPECT_FALSE(effect.psfValid);
  EXPECT_EQ(0, effect.psfKey.width);
  EXPECT_NE(nullptr, effect.engine);
}

TEST(Effect, StandsOnItsThreeBasesInOrder) {
  GlimmerBlur effect;
  auto* plugin = reinterpret_cast<char*>(static_cast<lx::PluginLX*>(&effect));
  auto* overlay = reinterpret_cast<char*>(static_cast<lx::OverlayLX*>(&effect));
  auto* info = reinterpret_cast<char*>(static_cast<lx::GlimmerBlurInfo*>(&effect));

  EXPECT_LT(plugin, overlay);
  EXPECT_LT(overlay, info);
  EXPECT_FALSE(std::is_polymorphic_v<lx::GlimmerBlurInfo>);
}

TEST(Effect, HasHooksThatDoNothing) {
  GlimmerBlur effect;
  lx::PluginLX& plugin = effect;

  plugin.Hook1(0, 1, 2, 3, 4, 5, 6, 7, 8, 9);
  plugin.Hook2(0, 1);
  plugin.Hook3(0);
  plugin.Hook4();
  plugin.Hook5();
  plugin.Hook6(0);
  plugin.Hook7(0, 1);

  EXPECT_FALSE(effect.psfValid);
}

}  // namespace
