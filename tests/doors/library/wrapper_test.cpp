// SPDX-License-Identifier: BSD-3-Clause
// The library from C++.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "doors/library/glimmerblur.hpp"
#include "tests/doors/library/library_frames.h"

namespace {

using library_test::Floats;

TEST(LibraryWrapper, RendersAsTheCFaceDoes) {
  const Floats source = library_test::Noise(30, 20, 1);
  glimmer::Look look;
  look.radius_x = 4.0;
  look.emphasis = 20.0;
  glimmer::Defocus first;
  first.SetLook(look);
  int asked = 0;
  first.SetProgress([&](double) {
    ++asked;
    return false;
  });
  glimmer::Defocus defocus = std::move(first);
  Floats pixels = source;
  const glimmer::Frame frame(30, 20, pixels.samples.data());
  defocus.Render(frame, frame);
  EXPECT_EQ(library_test::Blurred(library_test::Look(4.0, 20.0), source), pixels);
  EXPECT_GT(asked, 3);
  EXPECT_EQ(1, defocus.Report().tiles);
  const glimmerblur_rect needed =
      defocus.RegionNeeded({0, 0, 30, 20}, GLIMMERBLUR_TOP, {10, 9, 2, 1});
  EXPECT_EQ(6, needed.x);
  EXPECT_EQ(10, needed.width);
}

TEST(LibraryWrapper, ThrowsWhatWentWrong) {
  glimmer::Defocus defocus;
  glimmer::Look look;
  look.sides = 1;
  try {
    defocus.SetLook(look);
    FAIL();
  } catch (const glimmer::Error& error) {
    EXPECT_EQ(GLIMMERBLUR_INVALID_LOOK, error.Status());
    EXPECT_STREQ("The look's sides is 1; it must be 3 to 50.", error.what());
  }
  defocus.SetLook({});
  defocus.SetProgress([](double) { return true; });
  Floats pixels(30, 20);
  const glimmer::Frame frame(30, 20, pixels.samples.data());
  EXPECT_THROW(defocus.Render(frame, frame), glimmer::Error);
  defocus.SetProgress(nullptr);
  defocus.Render(frame, frame);
}

}  // namespace
