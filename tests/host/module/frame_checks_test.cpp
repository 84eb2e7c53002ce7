// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/frame_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "host/module/border_pictures.h"
#include "host/support/failure.h"
#include "tests/support/looks.h"

namespace {

using glimmerhost::Page;
using glimmerhost::TypedLook;

TEST(GridCheck, KnowsWhatTheEffectsGridTakes) {
  const Page page = Page::Load(PAGE);
  TypedLook typed;
  typed["radius"] = "20px";  // margin 21
  struct {
    const char* engine;
    int widest;
  } const cases[] = {{"fast", 32768 - 42}, {"exact", 8192 - 42}, {"double", 8192 - 42}};
  for (const auto& [name, widest] : cases) {
    const lx::Footprint& engine = *lx::FindFootprint(name);
    const auto fits = lx_test::StillValuesOf(page, typed, widest, 10);
    EXPECT_NO_THROW(glimmerhost::CheckGrid(engine, fits, widest, 10)) << name;
    const auto tooWide = lx_test::StillValuesOf(page, typed, widest + 1, 10);
    EXPECT_THROW(glimmerhost::CheckGrid(engine, tooWide, widest + 1, 10), glimmerhost::Failure)
        << name;
  }
}

TEST(GridCheck, LeavesTheYRadiusOfACircleOut) {
  const Page page = Page::Load(PAGE);
  TypedLook typed;
  typed["radius-x"] = "1px";
  typed["radius-y"] = "2000px";
  typed["shape"] = "circle";
  const lx::Footprint& exact = *lx::FindFootprint("exact");
  EXPECT_NO_THROW(
      glimmerhost::CheckGrid(exact, lx_test::StillValuesOf(page, typed, 6000, 10), 6000, 10));
  typed["shape"] = "ellipse";
  EXPECT_THROW(
      glimmerhost::CheckGrid(exact, lx_test::StillValuesOf(page, typed, 6000, 10), 6000, 10),
      glimmerhost::Failure);
}

// A frame of the source's size, into which a module without memory has put nothing.
struct EmptyFrame {
  EmptyFrame(int columns, int rows, const TypedLook& typed)
      : result(new glimmerhost::FrameImage(columns, rows)), width(columns), height(rows) {
    input.values = lx_test::StillValuesOf(Page::Load(PAGE), typed, width, height);
    input.source =
        quantel::cPtr<glimmerhost::FrameImage>(new glimmerhost::FrameImage(width, height));
  }

  // Fills columns of the source, alpha and all.
  void Fill(int first, int last, std::uint16_t sample) {
    for (int y = 0; y < height; ++y) {
      std::fill(Pixel(first, y), Pixel(last, y), sample);
    }
  }
  std::uint16_t* Pixel(int x, int y) const {
    return input.source->buffer() + (static_cast<std::ptrdiff_t>(y) * width + x) * 4;
  }

  bool IsTaken() { return glimmerhost::CheckRendered(input, result.Object()); }

  glimmerhost::FrameInput input;
  quantel::cPtr<glimmerhost::FrameImage> result;
  int width;
  int height;
};

TypedLook Circle(const std::string& radius) {
  TypedLook typed;
  typed["radius"] = radius;
  return typed;
}

TEST(RenderedCheck, RefusesAnEmptyFrameOfAPicture) {
  for (const auto& [width, height] : {std::pair{8, 8}, {1, 1}, {64, 1}, {1, 64}}) {
    for (const char* radius : {"0", "0.1", "0.5"}) {
      EmptyFrame frame(width, height, Circle(radius));
      frame.Fill(0, width, 257);
      EXPECT_THROW(frame.IsTaken(), glimmerhost::Failure)
          << width << " " << height << " " << radius;
    }
  }
}

// Transparent is black in all samples, too.
TEST(RenderedCheck, TakesBlackForBlack) {
  for (const auto& [width, height] : {std::pair{8, 8}, {1, 1}, {64, 1}}) {
    for (const char* radius : {"0", "0.1", "0.5"}) {
      EXPECT_TRUE(EmptyFrame(width, height, Circle(radius)).IsTaken()) << width << " " << radius;
    }
  }
}

TEST(RenderedCheck, TakesWhatIsTooDarkToBeLeftOver) {
  EmptyFrame frame(8, 8, Circle("0.5"));
  frame.Fill(0, 8, 256);
  EXPECT_TRUE(frame.IsTaken());
}

// What is there is nothing of a module without memory, however little it is.
TEST(RenderedCheck, TakesAFrameWithAnythingInIt) {
  EmptyFrame frame(8, 8, Circle("2px"));
  frame.Fill(0, 8, 60000);
  frame.result->buffer()[8 * 8 * 4 - 2] = 1;  // red
  EXPECT_TRUE(frame.IsTaken());
}

// No light at all, which the change of colours makes a green.
void FillWithoutLight(const EmptyFrame& frame, std::uint16_t green, std::uint16_t alpha) {
  for (int i = 0; i < frame.width * frame.height * 4; i += 4) {
    frame.result->buffer()[i + 1] = green;
    frame.result->buffer()[i + 3] = alpha;
  }
}

TEST(RenderedCheck, RefusesAFrameWithoutLightWhateverItsAlpha) {
  for (const std::uint16_t green : {std::uint16_t{0}, std::uint16_t{35000}}) {
    EmptyFrame frame(8, 8, Circle("2px"));
    frame.Fill(0, 8, 257);
    FillWithoutLight(frame, green, 60000);
    EXPECT_THROW(frame.IsTaken(), glimmerhost::Failure) << green;
  }
}

TEST(RenderedCheck, TakesGreenForGreenAndOpaqueBlackForBlack) {
  for (const std::uint16_t green : {std::uint16_t{0}, std::uint16_t{35000}}) {
    EmptyFrame frame(8, 8, Circle("2px"));
    for (int i = 0; i < 8 * 8 * 4; i += 4) {
      frame.input.source->buffer()[i + 1] = green;
      frame.input.source->buffer()[i + 3] = 60000;
    }
    FillWithoutLight(frame, green, 60000);
    EXPECT_TRUE(frame.IsTaken()) << green;
  }
}

// Of more than one green something was made.
TEST(RenderedCheck, TakesAFrameOfSeveralGreens) {
  EmptyFrame frame(8, 8, Circle("2px"));
  frame.Fill(0, 8, 60000);
  FillWithoutLight(frame, 35000, 60000);
  frame.result->buffer()[8 * 8 * 4 - 3] = 34998;
  EXPECT_TRUE(frame.IsTaken());
}

// The disc reaches 16 of 64 pixels: light at its rim moves the frame by as many.
TEST(RenderedCheck, KnowsThatADiscOfAPictureMayMoveALightOutOfTheFrame) {
  TypedLook typed;
  typed["shape"] = "image";
  typed["radius-psf1"] = "0.5";
  typed["radius-psf2"] = "0.1";
  EmptyFrame moved(64, 64, typed);
  moved.Fill(0, 16, 60000);
  moved.Fill(48, 64, 60000);
  EXPECT_TRUE(moved.IsTaken());

  EmptyFrame lost(64, 64, typed);
  lost.Fill(24, 40, 60000);
  EXPECT_THROW(lost.IsTaken(), glimmerhost::Failure);

  // No light of so narrow a frame is sure to stay.
  EmptyFrame narrow(64, 8, typed);
  narrow.Fill(0, 64, 60000);
  EXPECT_TRUE(narrow.IsTaken());
}

}  // namespace
