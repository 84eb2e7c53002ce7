// SPDX-License-Identifier: BSD-3-Clause
// The plug-ins over a library that fails when it is told to: this program's own, which stands
// before the real one in the search for names.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "doors/library/glimmerblur.h"
#include "tests/doors/frei0r/plugin.h"

struct glimmerblur {
  int unused = 0;
};

namespace {

struct Told {
  glimmerblur_status create = GLIMMERBLUR_OK;
  glimmerblur_status setLook = GLIMMERBLUR_OK;
  glimmerblur_status setAperture = GLIMMERBLUR_OK;
  glimmerblur_status render = GLIMMERBLUR_OK;
  int objects = 0;
  int apertures = 0;
};
Told told;

using Pixels = std::vector<std::uint32_t>;

// What the library of this program renders.
constexpr std::uint32_t kRendered = 0x01020304;

}  // namespace

extern "C" {
glimmerblur_status glimmerblur_create(const glimmerblur_options* /*options*/, glimmerblur** made) {
  *made = told.create == GLIMMERBLUR_OK ? new glimmerblur : nullptr;
  told.objects += *made != nullptr ? 1 : 0;
  return told.create;
}
void glimmerblur_destroy(glimmerblur* object) {
  told.objects -= object != nullptr ? 1 : 0;
  delete object;
}
const char* glimmerblur_message(const glimmerblur* /*object*/) { return "as it was told"; }
void glimmerblur_look_init(glimmerblur_look* look) { *look = {}; }
glimmerblur_status glimmerblur_set_look(glimmerblur* /*object*/, const glimmerblur_look* /*look*/) {
  return told.setLook;
}
void glimmerblur_frame_init(glimmerblur_frame* frame) { *frame = {}; }
glimmerblur_status glimmerblur_set_aperture(glimmerblur* /*object*/,
                                            const glimmerblur_frame* picture, double /*centre_x*/,
                                            double /*centre_y*/, double /*inner*/,
                                            double /*outer*/) {
  told.apertures += picture != nullptr ? 1 : 0;
  return told.setAperture;
}
glimmerblur_status glimmerblur_render(glimmerblur* /*object*/, const glimmerblur_frame* /*source*/,
                                      const glimmerblur_frame* destination,
                                      const glimmerblur_rect* /*whole*/) {
  if (told.render == GLIMMERBLUR_OK) {
    std::fill_n(static_cast<std::uint32_t*>(destination->data),
                destination->rect.width * destination->rect.height, kRendered);
  }
  return told.render;
}
}

namespace {

using lx_test::Frei0rFile;
using lx_test::Frei0rInstance;

class Frei0rOverFailingLibrary : public testing::Test {
 protected:
  void SetUp() override { told = {}; }
  void TearDown() override { EXPECT_EQ(0, told.objects); }

  const Pixels frame_ = Pixels(12, 0x0A0B0C0D);
  const Pixels rendered_ = Pixels(12, kRendered);
};

TEST_F(Frei0rOverFailingLibrary, MakesNoInstanceWithoutAnObject) {
  const Frei0rFile file(FILTER);
  for (const glimmerblur_status status : {GLIMMERBLUR_NO_MEMORY, GLIMMERBLUR_FAILED}) {
    told.create = status;
    EXPECT_FALSE(Frei0rInstance(file, 4, 3).IsThere());
  }
  told.create = GLIMMERBLUR_OK;

  EXPECT_EQ(rendered_, Frei0rInstance(file, 4, 3).Update(frame_));
}

TEST_F(Frei0rOverFailingLibrary, CopiesAFrameThatIsNotRenderedAndSaysSoOnce) {
  const Frei0rFile file(FILTER);
  Frei0rInstance instance(file, 4, 3);
  testing::internal::CaptureStderr();

  told.render = GLIMMERBLUR_NO_MEMORY;
  EXPECT_EQ(frame_, instance.Update(frame_));
  EXPECT_EQ(frame_, instance.Update(frame_));
  told.render = GLIMMERBLUR_OK;
  told.setLook = GLIMMERBLUR_INVALID_LOOK;
  EXPECT_EQ(frame_, instance.Update(frame_));
  told.setLook = GLIMMERBLUR_OK;
  EXPECT_EQ(rendered_, instance.Update(frame_));

  EXPECT_EQ("GlimmerBlur: a frame stays as it is: as it was told\n",
            testing::internal::GetCapturedStderr());
}

TEST_F(Frei0rOverFailingLibrary, HandsAnApertureOnWhenItChangesAlone) {
  const Frei0rFile file(MIXER);
  Frei0rInstance instance(file, 4, 3);
  Pixels aperture(12, 1);

  instance.Update(frame_, aperture);
  instance.Update(frame_, aperture);
  EXPECT_EQ(1, told.apertures);
  aperture[7] = 2;
  instance.Update(frame_, aperture);
  EXPECT_EQ(2, told.apertures);
  for (const int radiusCoreOrCentre : {0, 2, 3, 4}) {
    instance.Set(radiusCoreOrCentre, 0.25);
    instance.Update(frame_, aperture);
  }
  EXPECT_EQ(6, told.apertures);
}

TEST_F(Frei0rOverFailingLibrary, TriesARefusedApertureAgain) {
  const Frei0rFile file(MIXER);
  Frei0rInstance instance(file, 4, 3);
  told.setAperture = GLIMMERBLUR_NO_MEMORY;
  testing::internal::CaptureStderr();

  EXPECT_EQ(frame_, instance.Update(frame_, frame_));
  told.setAperture = GLIMMERBLUR_OK;
  EXPECT_EQ(rendered_, instance.Update(frame_, frame_));

  EXPECT_EQ("GlimmerBlur aperture: a frame stays as it is: as it was told\n",
            testing::internal::GetCapturedStderr());
}

}  // namespace
