// SPDX-License-Identifier: BSD-3-Clause
// What is foreseen of a shot.
#include "host/render/explain.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/host/render/shot_stage.h"

namespace {

using ExplainedShot = render_test::ShotStage;

TEST_F(ExplainedShot, IsForeseenFromTheHeadOfItsFirstPictureAlone) {
  Plan(3);
  WriteHeadAlone(2, 1920, 1080);
  std::ostringstream out;

  glimmerhost::Explain(*lx::FindFootprint("exact"), page, settings, plan, out);

  EXPECT_NE(std::string::npos, out.str().find("1-3, 3 of 1920 x 1080\n")) << out.str();
}

}  // namespace
