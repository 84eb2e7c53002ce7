// SPDX-License-Identifier: BSD-3-Clause
// Records of any values: a call is done or refused, and who is refused finds all as it was.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/doors/library/library_frames.h"

namespace {

using library_test::Look;
using library_test::Make;
using library_test::Object;
using library_test::Options;

class Wild {
 public:
  explicit Wild(unsigned seed) : random_(seed) {}

  bool Once(int in) { return random_() % static_cast<unsigned>(in) == 0; }
  int Of(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }

  // As a rule of the range, now and then anything.
  std::int32_t Number(int low, int high) {
    constexpr std::int32_t kOthers[] = {std::numeric_limits<std::int32_t>::min(),
                                        std::numeric_limits<std::int32_t>::max(),
                                        -1,
                                        0,
                                        1 << 20,
                                        (1 << 20) + 1,
                                        1 << 28,
                                        -(1 << 28) - 1};
    if (Once(60)) {
      return Once(3) ? static_cast<std::int32_t>(random_()) : kOthers[Of(0, 7)];
    }
    return Of(low, high);
  }
  double Real(double low, double high) {
    constexpr double kOthers[] = {std::numeric_limits<double>::quiet_NaN(),
                                  std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity(),
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::denorm_min(),
                                  -0.0,
                                  -1.0,
                                  1e9};
    return Once(40) ? kOthers[Of(0, 7)] : low + (high - low) * (random_() / 4294967296.0);
  }

 private:
  std::mt19937 random_;
};

glimmerblur_look AnyLook(Wild* wild) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = wild->Number(0, 3);
  look.sides = wild->Number(3, 50);
  look.radius_x = wild->Real(0, 12);
  look.radius_y = wild->Real(0, 12);
  look.rotation = wild->Real(-720, 720);
  look.pixel_aspect = wild->Real(0.2, 5);
  look.emphasis = wild->Real(0, 500);
  look.blur_alpha = wild->Number(0, 1);
  look.emphasis_alpha = wild->Number(0, 1);
  look.edge = wild->Number(0, 1);
  look.centred = wild->Number(0, 1);
  if (wild->Once(60)) {
    look.size = static_cast<std::uint32_t>(wild->Number(0, 200));
  }
  return look;
}

bool IsSane(const glimmerblur_look& look) {
  const auto in = [](double value, double low, double high) {
    return value >= low && value <= high;
  };
  return look.size == sizeof look && look.version == GLIMMERBLUR_ABI && in(look.shape, 0, 3) &&
         in(look.sides, 3, 50) && in(look.radius_x, 0, 8000) && in(look.radius_y, 0, 8000) &&
         std::isfinite(look.rotation) && in(look.pixel_aspect, 0.01, 100) &&
         in(look.emphasis, 0, 500) && in(look.edge, 0, 1);
}

// The memory is that of a packed frame where the record is sane; another must not be looked into.
struct AnyFrame {
  glimmerblur_frame frame;
  std::vector<unsigned char> memory;
  bool isSane;
};

AnyFrame DrawFrame(Wild* wild, const glimmerblur_frame* like) {
  AnyFrame any{};
  glimmerblur_frame& frame = any.frame;
  glimmerblur_frame_init(&frame);
  if (like != nullptr) {
    frame = *like;
  }
  frame.rect = {wild->Number(-3, 3), wild->Number(-3, 3), wild->Number(1, 33), wild->Number(1, 33)};
  // Either with memory behind it, or too long for any frame.
  for (std::int32_t* side : {&frame.rect.width, &frame.rect.height}) {
    *side = *side > 4096 ? std::max(*side, (1 << 20) + 1) : *side;
  }
  frame.sample = wild->Number(0, 2);
  if (like == nullptr || wild->Once(30)) {
    frame.layout = wild->Number(0, 1);
    frame.channels = wild->Number(frame.layout == GLIMMERBLUR_RGBA ? 3 : 1, 4);
    frame.alpha = wild->Number(0, 1);
    frame.first_row = wild->Number(0, 1);
  }
  if (wild->Once(60)) {
    frame.version = static_cast<std::uint32_t>(wild->Number(0, 2));
  }
  const auto in = [](std::int32_t value, std::int32_t low, std::int32_t high) {
    return value >= low && value <= high;
  };
  any.isSane = frame.version == 1 && in(frame.rect.width, 1, 4096) &&
               in(frame.rect.height, 1, 4096) && in(frame.sample, 0, 2) && in(frame.layout, 0, 1) &&
               in(frame.channels, 1, 16) &&
               (frame.layout == GLIMMERBLUR_PLANES || frame.channels > 2);
  any.memory.resize(1);
  if (any.isSane) {
    const int bytes = frame.sample == GLIMMERBLUR_FLOAT ? 4 : frame.sample + 1;
    const int pixels = frame.rect.width * frame.rect.height;
    any.memory.resize(static_cast<std::size_t>(bytes * frame.channels) *
                      static_cast<std::size_t>(pixels));
  }
  for (unsigned char& byte : any.memory) {
    byte = static_cast<unsigned char>(wild->Of(0, 255));
  }
  frame.data = wild->Once(60) ? nullptr : any.memory.data();
  // Longer than a frame's rows they may be; such frames have to be refused for something else.
  if (!any.isSane) {
    frame.row_stride = wild->Number(0, 1000);
    frame.pixel_stride = wild->Once(4) ? std::numeric_limits<std::int64_t>::min() : 0;
    frame.channel_stride = wild->Once(4) ? std::numeric_limits<std::int64_t>::max() : 0;
  }
  return any;
}

// What a call must leave.
void ExpectAnswer(const Object& object, glimmerblur_status status, unsigned seed) {
  const std::string message = glimmerblur_message(object.get());
  EXPECT_EQ(status == GLIMMERBLUR_OK, message.empty()) << seed << message;
  EXPECT_TRUE(message.empty() || message.back() == '.') << seed << message;
  EXPECT_NE(GLIMMERBLUR_FAILED, status) << seed << message;
}

class LibraryRecordsOf : public testing::TestWithParam<int> {};

TEST_P(LibraryRecordsOf, AnyValuesAreDoneOrRefused) {
  glimmerblur_options options = Options(2);
  options.memory_limit = 40U << 20U;
  const Object object = Make(options);
  int rendered = 0;
  const auto first = static_cast<unsigned>(GetParam()) * 400U;
  for (unsigned seed = first; seed < first + 400U; ++seed) {
    Wild wild(seed);
    const glimmerblur_look look = AnyLook(&wild);
    glimmerblur_status status = glimmerblur_set_look(object.get(), &look);
    ExpectAnswer(object, status, seed);
    EXPECT_TRUE(status == GLIMMERBLUR_OK || !IsSane(look) || std::abs(look.rotation) > 1e6) << seed;

    const AnyFrame picture = DrawFrame(&wild, nullptr);
    status = glimmerblur_set_aperture(object.get(), wild.Once(20) ? nullptr : &picture.frame,
                                      wild.Real(-5, 40), wild.Real(-5, 40), wild.Real(-1, 10),
                                      wild.Real(-1, 20));
    ExpectAnswer(object, status, seed);

    const AnyFrame source = DrawFrame(&wild, nullptr);
    AnyFrame dest = DrawFrame(&wild, &source.frame);
    if (dest.isSane && source.isSane && wild.Once(2)) {
      dest = source;
      dest.frame.data = dest.memory.data();
    }
    const std::vector<unsigned char> before = dest.memory;
    const glimmerblur_rect whole{wild.Number(-3, 3), wild.Number(-3, 3), wild.Number(1, 40),
                                 wild.Number(1, 40)};
    glimmerblur_rect needed{1, 2, 3, 4};
    status = glimmerblur_region_needed(object.get(), &whole, wild.Number(0, 1), &dest.frame.rect,
                                       &needed);
    ExpectAnswer(object, status, seed);
    if (status != GLIMMERBLUR_OK) {
      EXPECT_TRUE(needed.x == 1 && needed.y == 2 && needed.width == 3 && needed.height == 4);
    } else {
      EXPECT_TRUE(needed.x >= whole.x && needed.y >= whole.y && needed.width >= 1 &&
                  needed.height >= 1 && needed.x + needed.width <= whole.x + whole.width &&
                  needed.y + needed.height <= whole.y + whole.height)
          << seed;
    }
    status = glimmerblur_render(object.get(), &source.frame, &dest.frame,
                                wild.Once(3) ? &whole : nullptr);
    ExpectAnswer(object, status, seed);
    EXPECT_TRUE(status != GLIMMERBLUR_OK || (source.isSane && dest.isSane)) << seed;
    if (status == GLIMMERBLUR_OK) {
      ++rendered;
    } else {
      EXPECT_EQ(before, dest.memory) << seed;
    }
  }
  EXPECT_GT(rendered, 40);
}

INSTANTIATE_TEST_SUITE_P(Wild, LibraryRecordsOf, testing::Range(0, 4));

// A pair that is well but for one number of one of the two.
TEST(LibraryRecords, OfOneWrongNumberAreRefused) {
  const std::function<void(glimmerblur_frame&)> damages[] = {
      [](auto& f) { f.size += 8; },
      [](auto& f) { f.version = 2; },
      [](auto& f) { f.sample = 3; },
      [](auto& f) { f.sample = -1; },
      [](auto& f) { f.layout = 2; },
      [](auto& f) { f.layout = -1; },
      [](auto& f) { f.channels = 2; },
      [](auto& f) { f.channels = 0; },
      [](auto& f) { f.alpha = 2; },
      [](auto& f) { f.alpha = -1; },
      [](auto& f) { f.first_row = 2; },
      [](auto& f) { f.first_row = -1; },
      [](auto& f) { f.rect.width = 0; },
      [](auto& f) { f.rect.height = -1; },
      [](auto& f) { f.rect.width = (1 << 20) + 1; },
      [](auto& f) { f.rect.x = std::numeric_limits<std::int32_t>::max(); },
      [](auto& f) { f.rect.y = std::numeric_limits<std::int32_t>::min(); },
      [](auto& f) { f.row_stride = std::numeric_limits<std::int64_t>::min(); },
      [](auto& f) { f.pixel_stride = std::numeric_limits<std::int64_t>::max(); },
      [](auto& f) { f.channel_stride = std::numeric_limits<std::int64_t>::min(); },
      [](auto& f) { f.data = nullptr; },
  };
  const Object object = Make(Look(2.0));
  int number = 0;
  for (const auto& damage : damages) {
    for (const int which : {1, 2, 3}) {
      library_test::Floats source = library_test::Noise(16, 12, 1);
      library_test::Floats dest(16, 12);
      glimmerblur_frame in = source.Frame();
      glimmerblur_frame out = dest.Frame();
      const glimmerblur_rect whole = in.rect;
      if ((which & 1) != 0) {
        damage(in);
      }
      if ((which & 2) != 0) {
        damage(out);
      }
      const glimmerblur_status status = glimmerblur_render(object.get(), &in, &out, &whole);
      EXPECT_NE(GLIMMERBLUR_OK, status) << number << ' ' << which;
      ExpectAnswer(object, status, static_cast<unsigned>(number));
      EXPECT_EQ(library_test::Floats(16, 12), dest) << number;
    }
    ++number;
  }
}

}  // namespace
