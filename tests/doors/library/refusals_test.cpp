// SPDX-License-Identifier: BSD-3-Clause
// What the library says no to: a status, a sentence, and the destination as it was.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string>

#include "tests/doors/library/library_frames.h"
#include "tests/support/heap_faults.h"

namespace {

using library_test::Floats;
using library_test::Look;
using library_test::Make;
using library_test::Noise;
using library_test::Object;
using library_test::Options;

TEST(LibraryStatus, HasATextForEachAndForOthers) {
  for (int status = 0; status <= GLIMMERBLUR_FAILED; ++status) {
    EXPECT_GT(std::strlen(glimmerblur_status_text(status)), 5U);
    EXPECT_STRNE("an unknown status", glimmerblur_status_text(status)) << status;
  }
  EXPECT_STREQ("an unknown status", glimmerblur_status_text(-1));
  EXPECT_STREQ("an unknown status", glimmerblur_status_text(GLIMMERBLUR_FAILED + 1));
}

TEST(LibraryObject, IsNotMadeFromWrongOptions) {
  glimmerblur_options options = Options();
  glimmerblur* made = nullptr;
  EXPECT_EQ(GLIMMERBLUR_INVALID_ARGUMENT, glimmerblur_create(&options, nullptr));
  for (const int threads : {-1, 65}) {
    options.threads = threads;
    EXPECT_EQ(GLIMMERBLUR_INVALID_ARGUMENT, glimmerblur_create(&options, &made));
  }
  options = Options();
  options.engine = 2;
  EXPECT_EQ(GLIMMERBLUR_INVALID_ARGUMENT, glimmerblur_create(&options, &made));
  options.engine = GLIMMERBLUR_EXACT;
  EXPECT_EQ(GLIMMERBLUR_NOT_BUILT, glimmerblur_create(&options, &made));
  options = Options();
  options.size -= 4;
  EXPECT_EQ(GLIMMERBLUR_INVALID_ARGUMENT, glimmerblur_create(&options, &made));
  options = Options();
  options.version = 2;
  EXPECT_EQ(GLIMMERBLUR_INVALID_ARGUMENT, glimmerblur_create(&options, &made));
  EXPECT_EQ(nullptr, made);
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_create(nullptr, &made));
  glimmerblur_destroy(made);
  glimmerblur_destroy(nullptr);
}

TEST(LibraryObject, TakesNullForNothing) {
  EXPECT_EQ(GLIMMERBLUR_INVALID_ARGUMENT, glimmerblur_render(nullptr, nullptr, nullptr, nullptr));
  EXPECT_STREQ("", glimmerblur_message(nullptr));
  const Object object = Make();
  EXPECT_EQ(GLIMMERBLUR_INVALID_ARGUMENT, glimmerblur_set_look(object.get(), nullptr));
  EXPECT_STREQ("The look is null.", glimmerblur_message(object.get()));
  Floats pixels(4, 4);
  const glimmerblur_frame frame = pixels.Frame();
  EXPECT_EQ(GLIMMERBLUR_NO_LOOK, glimmerblur_render(object.get(), &frame, &frame, nullptr));
  EXPECT_STREQ("No look has been set.", glimmerblur_message(object.get()));
}

struct WrongLook {
  std::function<void(glimmerblur_look&)> change;
  std::string message;
};

TEST(LibraryLook, NamesTheMemberItsValueAndWhatIsAllowed) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const WrongLook wrong[] = {
      {[](auto& l) { l.shape = 4; }, "The look's shape is 4; it must be 0 to 3."},
      {[](auto& l) { l.sides = 2; }, "The look's sides is 2; it must be 3 to 50."},
      {[](auto& l) { l.radius_x = -0.5; }, "The look's radius_x is -0.5; it must be 0 to 8000."},
      {[](auto& l) { l.radius_y = 8001; }, "The look's radius_y is 8001; it must be 0 to 8000."},
      {[=](auto& l) { l.rotation = nan; },
       "The look's rotation is nan; it must be -1000000 to 1000000."},
      {[](auto& l) { l.pixel_aspect = 0; },
       "The look's pixel_aspect is 0; it must be 0.01 to 100."},
      {[](auto& l) { l.emphasis = 501; }, "The look's emphasis is 501; it must be 0 to 500."},
      {[](auto& l) { l.edge = -1; }, "The look's edge is -1; it must be 0 to 1."},
  };
  const Object object = Make(Look(3.0));
  for (const WrongLook& each : wrong) {
    glimmerblur_look look = Look(5.0);
    each.change(look);
    EXPECT_EQ(GLIMMERBLUR_INVALID_LOOK, glimmerblur_set_look(object.get(), &look));
    EXPECT_EQ(each.message, glimmerblur_message(object.get()));
  }
  // It keeps the one it had.
  const Floats source = Noise(20, 20, 1);
  EXPECT_EQ(library_test::Blurred(Look(3.0), source), library_test::Blurred(object, source));
}

TEST(LibraryFrame, NamesWhatIsWrong) {
  const Object object = Make(Look(3.0));
  const auto refused = [&](const std::function<void(glimmerblur_frame&)>& change) -> std::string {
    Floats pixels = Noise(20, 20, 1);
    Floats dest(20, 20);
    glimmerblur_frame in = pixels.Frame();
    const glimmerblur_frame out = dest.Frame();
    change(in);
    const glimmerblur_status status = glimmerblur_render(object.get(), &in, &out, nullptr);
    EXPECT_NE(GLIMMERBLUR_OK, status);
    EXPECT_EQ(Floats(20, 20), dest);
    return glimmerblur_message(object.get());
  };
  EXPECT_EQ("The source is 0 x 20 pixels; sides must be 1 to 1048576.",
            refused([](auto& f) { f.rect.width = 0; }));
  EXPECT_EQ("The source has sample 3; it must be 0 to 2.", refused([](auto& f) { f.sample = 3; }));
  EXPECT_EQ("The source has 5 channels; RGBA has 4, or 3 without alpha.",
            refused([](auto& f) { f.channels = 5; }));
  EXPECT_EQ("The source has channels 3 and the destination 4; they must be the same.",
            refused([](auto& f) { f.channels = 3; }));
  EXPECT_EQ("The source has alpha 1 and the destination 0; they must be the same.",
            refused([](auto& f) { f.alpha = 1; }));
  EXPECT_EQ("The source has no samples: data is null.", refused([](auto& f) { f.data = nullptr; }));
  EXPECT_EQ("The source begins at (0, 536870912); both must be within 2^28.",
            refused([](auto& f) { f.rect.y = 1 << 29; }));
  EXPECT_EQ(
      "The destination is 20 x 20 at (0, 0), which is not all inside the whole picture's 19 x 20 "
      "at "
      "(0, 0).",
      refused([](auto& f) { f.rect.width = 19; }));
  EXPECT_EQ("The source is a record of size 3 and version 1; glimmerblur_frame_init makes " +
                std::to_string(sizeof(glimmerblur_frame)) + " and 1.",
            refused([](auto& f) { f.size = 3; }));
}

TEST(LibraryAperture, IsAskedForWhereTheShapeIsAPicture) {
  glimmerblur_look look = Look(3.0);
  look.shape = GLIMMERBLUR_PICTURE;
  const Object object = Make(look);
  Floats pixels(8, 8);
  const glimmerblur_frame frame = pixels.Frame();
  EXPECT_EQ(GLIMMERBLUR_NO_APERTURE, glimmerblur_render(object.get(), &frame, &frame, nullptr));
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), &frame, 4, 4, -1, -1));
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &frame, &frame, nullptr));
  EXPECT_EQ(GLIMMERBLUR_INVALID_ARGUMENT,
            glimmerblur_set_aperture(object.get(), &frame, 4, 4, -1, 3));
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), nullptr, 0, 0, 0, 0));
  EXPECT_EQ(GLIMMERBLUR_NO_APERTURE, glimmerblur_render(object.get(), &frame, &frame, nullptr));
}

TEST(LibraryAperture, MustFitIntoATransform) {
  glimmerblur_look look = Look(8000.0);
  look.pixel_aspect = 0.9;
  const Object object = Make(look);
  Floats pixels(9, 8);
  const glimmerblur_frame frame = pixels.Frame();
  EXPECT_EQ(GLIMMERBLUR_TOO_LARGE, glimmerblur_render(object.get(), &frame, &frame, nullptr));
  const std::string message = glimmerblur_message(object.get());
  EXPECT_EQ(0U, message.find("The aperture is 17")) << message;
  EXPECT_NE(std::string::npos, message.find(" pixels; sides must be up to 16384.")) << message;
}

// Wherever the engine's memory runs out: the destination is as it was, and the next render is well.
TEST(LibraryMemory, RunsOutAtAnyPlaceWithoutATrace) {
  for (const double emphasis : {1.0, 200.0}) {
    const Floats source = Noise(40, 30, 2);
    const Floats expected = library_test::Blurred(Look(4.0, emphasis), source);
    lx_test::HeapFaults heap;
    int refused = 0;
    for (int n = 1; n < 200; ++n) {
      const Object object = Make(Look(4.0, emphasis));
      Floats dest(40, 30);
      heap.Refuse(n);
      const glimmerblur_status status = library_test::Render(object, source, &dest);
      heap.Refuse(0);
      if (status == GLIMMERBLUR_OK) {
        break;
      }
      ++refused;
      EXPECT_EQ(GLIMMERBLUR_NO_MEMORY, status);
      EXPECT_STREQ("Memory has run out.", glimmerblur_message(object.get()));
      EXPECT_EQ(Floats(40, 30), dest);
      EXPECT_EQ(expected, library_test::Blurred(object, source));
      EXPECT_STREQ("", glimmerblur_message(object.get()));
    }
    EXPECT_GE(refused, 8);
    EXPECT_EQ(0, heap.Alive());
  }
}

}  // namespace
