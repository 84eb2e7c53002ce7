// SPDX-License-Identifier: BSD-3-Clause
#include "effect/psf_key.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using lx::PsfKey;
using lx::SharesPsf;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr std::int32_t kEllipse = 2;
constexpr std::int32_t kImage = 4;

PsfKey Key() {
  return {.shape = kEllipse,
          .width = 200,
          .height = 100,
          .rotation = 30.0,
          .psfRotation = 30.0F,
          .radiusX = 10.0F,
          .radiusY = 5.0F,
          .sides = 6,
          .aspectX = 1.0F,
          .aspectY = 2.0F};
}

// One field, moved by a number of its own unit.
struct Field {
  const char* name;
  void (*move)(PsfKey* key, float by);
};

constexpr Field kWholeFields[] = {
    {"shape", [](PsfKey* key, float by) { key->shape += static_cast<std::int32_t>(by); }},
    {"width", [](PsfKey* key, float by) { key->width += static_cast<std::int32_t>(by); }},
    {"height", [](PsfKey* key, float by) { key->height += static_cast<std::int32_t>(by); }},
    {"sides", [](PsfKey* key, float by) { key->sides += static_cast<std::int32_t>(by); }}};

constexpr Field kNearFields[] = {{"radiusX", [](PsfKey* key, float by) { key->radiusX += by; }},
                                 {"radiusY", [](PsfKey* key, float by) { key->radiusY += by; }},
                                 {"aspectX", [](PsfKey* key, float by) { key->aspectX += by; }},
                                 {"aspectY", [](PsfKey* key, float by) { key->aspectY += by; }}};

TEST(PsfKey, IsSharedByEqualFrames) { EXPECT_TRUE(SharesPsf(Key(), Key())); }

TEST(PsfKey, IsOfOneFrameAloneWhereAWholeNumberDiffers) {
  for (const Field& field : kWholeFields) {
    for (const float by : {1.0F, -1.0F}) {
      PsfKey other = Key();
      field.move(&other, by);
      EXPECT_FALSE(SharesPsf(other, Key())) << field.name << by;
    }
  }
}

TEST(PsfKey, IsSharedBelowAHundredthAndNotAboveIt) {
  for (const Field& field : kNearFields) {
    for (const float sign : {1.0F, -1.0F}) {
      PsfKey near = Key();
      field.move(&near, sign * 0.0099F);
      EXPECT_TRUE(SharesPsf(near, Key())) << field.name << sign;

      PsfKey far = Key();
      field.move(&far, sign * 0.0101F);
      EXPECT_FALSE(SharesPsf(far, Key())) << field.name << sign;
    }
  }
}

// The hundredth is a double. 1.01 as a float is 1.00999999, less than that above 1, and 10.01 is
// 10.0100002, more than that above 10.
TEST(PsfKey, ComparesFloatsWithAHundredthInDoublePrecision) {
  PsfKey aspect = Key();
  aspect.aspectX = 1.01F;
  EXPECT_TRUE(SharesPsf(aspect, Key()));

  PsfKey radius = Key();
  radius.radiusX = 10.01F;
  EXPECT_FALSE(SharesPsf(radius, Key()));
}

TEST(PsfKey, ComparesTheExactRotationWithTheFloatOfThePreviousFrame) {
  PsfKey frame = Key();
  frame.rotation = 30.0099;
  frame.psfRotation = 90.0F;  // for the frame after this one
  EXPECT_TRUE(SharesPsf(frame, Key()));
  frame.rotation = 30.0101;
  EXPECT_FALSE(SharesPsf(frame, Key()));
  frame.rotation = 29.9899;
  EXPECT_FALSE(SharesPsf(frame, Key()));

  PsfKey previous = Key();
  previous.rotation = 90.0;  // no longer looked at
  EXPECT_TRUE(SharesPsf(Key(), previous));
}

TEST(PsfKey, IsNotSharedAtAHundredthItself) {
  PsfKey frame = Key();
  PsfKey previous = Key();
  frame.rotation = 0.01;
  previous.psfRotation = 0.0F;
  EXPECT_FALSE(SharesPsf(frame, previous));
}

TEST(PsfKey, IsNeverSharedByImages) {
  PsfKey image = Key();
  image.shape = kImage;
  EXPECT_FALSE(SharesPsf(image, image));
}

TEST(PsfKey, IsNotSharedWhereAValueIsNotANumber) {
  for (const Field& field : kNearFields) {
    PsfKey key = Key();
    field.move(&key, kNan);
    EXPECT_FALSE(SharesPsf(key, Key())) << field.name;
    EXPECT_FALSE(SharesPsf(Key(), key)) << field.name;
    EXPECT_FALSE(SharesPsf(key, key)) << field.name;
  }
  PsfKey frame = Key();
  frame.rotation = kNan;
  EXPECT_FALSE(SharesPsf(frame, Key()));
  PsfKey previous = Key();
  previous.psfRotation = kNan;
  EXPECT_FALSE(SharesPsf(Key(), previous));
}

// Whether a step of a hundredth is below a hundredth is settled by how the rotation before it was
// rounded. Counted by another program, in which only the stored rotation is of single precision.
TEST(PsfKey, IsSharedByAboutHalfOfTheFramesThatTurnByAHundredth) {
  PsfKey previous = Key();
  previous.psfRotation = 0.0F;
  int shared = 0;

  for (int i = 1; i <= 3600; ++i) {
    PsfKey frame = Key();
    frame.rotation = i * 0.01;
    frame.psfRotation = static_cast<float>(frame.rotation);
    shared += SharesPsf(frame, previous) ? 1 : 0;
    previous = frame;
  }

  EXPECT_EQ(1790, shared);
}

TEST(PsfKey, IsSharedAlongADriftOfAnyLength) {
  PsfKey previous = Key();
  PsfKey frame = Key();

  for (int i = 0; i < 1000; ++i) {
    frame.radiusX += 0.009F;
    frame.rotation += 0.009;
    frame.psfRotation = static_cast<float>(frame.rotation);
    ASSERT_TRUE(SharesPsf(frame, previous)) << i;
    previous = frame;
  }

  EXPECT_FALSE(SharesPsf(frame, Key()));
}

}  // namespace
