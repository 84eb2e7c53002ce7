// SPDX-License-Identifier: BSD-3-Clause
// The header's promises, over records drawn at random, against plain sums.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "tests/doors/library/library_frames.h"
#include "tests/doors/library/plain_blur.h"

namespace {

using library_test::Blurred;
using library_test::FrameLook;
using library_test::Make;
using library_test::Object;
using library_test::Options;
using library_test::PlainBlur;
using library_test::Weight;

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}

  int Of(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }
  bool Once(int in) { return Of(1, in) == 1; }
  double Real(double low, double high) { return low + (high - low) * (random_() / 4294967296.0); }

 private:
  std::mt19937 random_;
};

constexpr unsigned char kFill = 0xA5;
constexpr std::size_t kGuard = 64;

// A frame in memory of its own, strides as they fall.
struct Placed {
  glimmerblur_frame frame;
  std::vector<unsigned char> memory;

  std::vector<bool> Used() const {
    std::vector<bool> used(memory.size());
    const FrameLook look{&frame};
    for (int y = 0; y < frame.rect.height; ++y) {
      for (int x = 0; x < frame.rect.width; ++x) {
        for (int c = 0; c < frame.channels; ++c) {
          const std::ptrdiff_t at = look.At(x, y, c) - memory.data();
          for (int b = 0; b < FrameLook::Bytes(frame.sample); ++b) {
            used.at(static_cast<std::size_t>(at + b)) = true;
          }
        }
      }
    }
    return used;
  }
};

// Strides of the three steps in an order at random, with gaps, backwards or forwards.
void Place(Dice* dice, Placed* placed) {
  glimmerblur_frame& frame = placed->frame;
  const int bytes = FrameLook::Bytes(frame.sample);
  std::int64_t* const strides[] = {&frame.channel_stride, &frame.pixel_stride, &frame.row_stride};
  const std::int64_t counts[] = {frame.channels, frame.rect.width, frame.rect.height};
  if (dice->Once(3)) {
    *strides[0] = *strides[1] = *strides[2] = 0;
    placed->memory.assign(
        kGuard * 2 + static_cast<std::size_t>(counts[0] * counts[1] * counts[2] * bytes), kFill);
    frame.data = placed->memory.data() + kGuard;
    return;
  }
  int order[] = {0, 1, 2};
  if (dice->Once(2)) {
    std::swap(order[static_cast<std::size_t>(dice->Of(0, 2))],
              order[static_cast<std::size_t>(dice->Of(0, 2))]);
  }
  std::int64_t step = bytes;
  std::int64_t first = 0;
  for (const int i : order) {
    const std::int64_t stride = step + (dice->Once(2) ? dice->Of(0, 7) : 0);
    step = stride * counts[i];
    const bool isBackwards = dice->Once(3);
    *strides[i] = isBackwards ? -stride : stride;
    first += isBackwards ? stride * (counts[i] - 1) : 0;
  }
  placed->memory.assign(kGuard * 2 + static_cast<std::size_t>(step), kFill);
  frame.data = placed->memory.data() + kGuard + first;
}

void Fill(Dice* dice, Placed* placed, double low, double high) {
  const glimmerblur_frame& frame = placed->frame;
  const FrameLook look{&frame};
  const bool hasBroken = frame.sample == GLIMMERBLUR_FLOAT && dice->Once(3);
  for (int y = 0; y < frame.rect.height; ++y) {
    for (int x = 0; x < frame.rect.width; ++x) {
      for (int c = 0; c < frame.channels; ++c) {
        unsigned char* at = look.At(x, y, c);
        const bool isAlpha = frame.layout == GLIMMERBLUR_RGBA && c == 3;
        const auto word = static_cast<std::uint16_t>(dice->Of(0, 65535));
        auto real = static_cast<float>(isAlpha ? dice->Real(0.05, 1.0) : dice->Real(low, high));
        if (hasBroken && dice->Once(40)) {
          // Any of what is not finite, whatever its payload.
          const std::uint32_t bits = 0x7F800000U |
                                     static_cast<std::uint32_t>(dice->Of(0, 0x7FFFFF)) |
                                     (dice->Once(2) ? 0x80000000U : 0U);
          std::memcpy(&real, &bits, sizeof real);
        }
        switch (frame.sample) {
          case GLIMMERBLUR_U8:
            *at = static_cast<unsigned char>(std::max(word & 0xFF, isAlpha ? 13 : 0));
            break;
          case GLIMMERBLUR_U16:
            std::memcpy(at, &word, sizeof word);
            break;
          default:
            std::memcpy(at, &real, sizeof real);
            break;
        }
      }
    }
  }
}

// An aperture of a few weights, and the picture to hand in.
struct Shape {
  library_test::Pixels<std::uint8_t> picture{1, 1, 1};
  std::vector<Weight> weights;
};

Shape DrawShape(Dice* dice) {
  Shape shape;
  shape.picture = library_test::Pixels<std::uint8_t>(dice->Of(1, 12), dice->Of(1, 12), 1);
  const int width = shape.picture.width;
  const int height = shape.picture.height;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int weight = dice->Once(2) ? 0 : dice->Of(1, 255);
      shape.picture.At(x, y, 0) = static_cast<std::uint8_t>(weight);
      if (weight != 0) {
        // The middle is the pixel behind the half, counted from the left and from the bottom.
        const int up = height - 1 - y - height / 2;
        shape.weights.push_back({x - width / 2, -up, static_cast<double>(weight)});
      }
    }
  }
  if (shape.weights.empty()) {
    shape.weights.push_back({0, 0, 1.0});
  }
  return shape;
}

glimmerblur_look DrawLook(Dice* dice) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = GLIMMERBLUR_PICTURE;
  const double emphases[] = {0.0, 1.0, 2.0, 20.0, 50.0, 90.0, 300.0};
  look.emphasis = emphases[dice->Of(0, 6)];
  look.blur_alpha = dice->Of(0, 1);
  look.emphasis_alpha = dice->Of(0, 1);
  look.edge = dice->Of(0, 1);
  return look;
}

glimmerblur_rect PartOf(Dice* dice, const glimmerblur_rect& whole) {
  if (dice->Once(3)) {
    return whole;
  }
  glimmerblur_rect part{};
  part.width = dice->Of(1, whole.width);
  part.height = dice->Of(1, whole.height);
  part.x = whole.x + dice->Of(0, whole.width - part.width);
  part.y = whole.y + dice->Of(0, whole.height - part.height);
  return part;
}

std::string Tell(unsigned seed, const glimmerblur_look& look, const glimmerblur_frame& in,
                 const glimmerblur_frame& out) {
  const auto words = [](const glimmerblur_rect& r) {
    return std::to_string(r.width) + "x" + std::to_string(r.height) + "@" + std::to_string(r.x) +
           "," + std::to_string(r.y);
  };
  return "seed " + std::to_string(seed) + " emphasis " + std::to_string(look.emphasis) + " edge " +
         std::to_string(look.edge) + " alpha " + std::to_string(look.blur_alpha) +
         std::to_string(look.emphasis_alpha) + " source " + words(in.rect) + " sample " +
         std::to_string(in.sample) + " layout " + std::to_string(in.layout) + " channels " +
         std::to_string(in.channels) + " straight " + std::to_string(in.alpha) + " first row " +
         std::to_string(in.first_row) + " destination " + words(out.rect) + " sample " +
         std::to_string(out.sample);
}

// What a result may be beside what is expected: floats hold 24 bits, integers are rounded.
double Tolerance(int sample, double expected, double largest) {
  const double ofFloats = 1e-5 * std::max({1.0, std::abs(expected), largest});
  return ofFloats + (sample == GLIMMERBLUR_U8    ? 0.501 / 255
                     : sample == GLIMMERBLUR_U16 ? 0.501 / 65535
                                                 : 0.0);
}

class LibraryContract : public testing::TestWithParam<int> {};

TEST_P(LibraryContract, HoldsForRecordsDrawnAtRandom) {
  for (unsigned seed = static_cast<unsigned>(GetParam()) * 40U;
       seed < static_cast<unsigned>(GetParam() + 1) * 40U; ++seed) {
    Dice dice(seed);
    const Shape shape = DrawShape(&dice);
    const glimmerblur_look look = DrawLook(&dice);
    const bool isBright = dice.Once(2);

    Placed whole{};
    glimmerblur_frame_init(&whole.frame);
    whole.frame.rect = {dice.Of(-100, 100), dice.Of(-100, 100), dice.Of(1, 40), dice.Of(1, 40)};
    if (dice.Once(8)) {
      whole.frame.rect.width = 1;
    }
    whole.frame.sample = dice.Of(0, 2);
    whole.frame.layout = dice.Of(0, 1);
    whole.frame.channels = whole.frame.layout == GLIMMERBLUR_RGBA ? dice.Of(3, 4) : dice.Of(1, 6);
    whole.frame.alpha = dice.Of(0, 1);
    whole.frame.first_row = dice.Of(0, 1);
    Place(&dice, &whole);
    // Colours below 0 and an emphasis: its curve has nothing there.
    Fill(&dice, &whole, isBright && look.emphasis <= 1.0 ? -2.0 : 0.0, isBright ? 6.0 : 1.0);

    glimmerblur_options options = Options(dice.Of(1, 4));
    const Object object = Make(look, options);
    library_test::Pixels<std::uint8_t> picture = shape.picture;
    const glimmerblur_frame aperture = picture.Frame();
    ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), &aperture, 0, 0, -1, -1));

    Placed to{};
    to.frame = whole.frame;
    to.frame.sample = dice.Of(0, 2);
    to.frame.rect = PartOf(&dice, whole.frame.rect);
    Place(&dice, &to);

    // Of the source no more is handed in than is needed.
    glimmerblur_rect needed{};
    ASSERT_EQ(GLIMMERBLUR_OK,
              glimmerblur_region_needed(object.get(), &whole.frame.rect, whole.frame.first_row,
                                        &to.frame.rect, &needed));
    Placed from{};
    from.frame = whole.frame;
    from.frame.rect = needed;
    Place(&dice, &from);
    for (int y = 0; y < needed.height; ++y) {
      for (int x = 0; x < needed.width; ++x) {
        for (int c = 0; c < from.frame.channels; ++c) {
          std::memcpy(FrameLook{&from.frame}.At(x, y, c),
                      FrameLook{&whole.frame}.At(needed.x - whole.frame.rect.x + x,
                                                 needed.y - whole.frame.rect.y + y, c),
                      static_cast<std::size_t>(FrameLook::Bytes(from.frame.sample)));
        }
      }
    }
    const std::vector<unsigned char> before = from.memory;
    const PlainBlur plain(whole.frame, look, shape.weights);
    const std::string about = Tell(seed, look, whole.frame, to.frame);

    ASSERT_EQ(GLIMMERBLUR_OK,
              glimmerblur_render(object.get(), &from.frame, &to.frame, &whole.frame.rect))
        << glimmerblur_message(object.get()) << '\n'
        << about;

    ASSERT_EQ(before, from.memory) << about;
    const std::vector<bool> used = to.Used();
    for (std::size_t i = 0; i < used.size(); ++i) {
      ASSERT_TRUE(used[i] || to.memory[i] == kFill) << "written beside the frame\n" << about;
    }
    for (int y = 0; y < to.frame.rect.height; ++y) {
      for (int x = 0; x < to.frame.rect.width; ++x) {
        const std::vector<double> expected = plain.At(to.frame.rect.x - whole.frame.rect.x + x,
                                                      to.frame.rect.y - whole.frame.rect.y + y);
        for (int c = 0; c < to.frame.channels; ++c) {
          double value = expected[static_cast<std::size_t>(c)];
          if (to.frame.sample != GLIMMERBLUR_FLOAT) {
            value = std::clamp(value, 0.0, 1.0);
          }
          const double got = FrameLook{&to.frame}.Get(x, y, c);
          const double tolerance =
              Tolerance(to.frame.sample, value, isBright ? 6.0 : 1.0) /
              (whole.frame.alpha == GLIMMERBLUR_STRAIGHT && c < 3 ? 0.02 : 1.0);
          ASSERT_NEAR(value, got, tolerance) << x << ',' << y << ',' << c << '\n' << about;
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Dice, LibraryContract, testing::Range(0, 10));

struct BrightLight {
  const char* about;
  int channels;
  float value;
  int only;  // the one channel that it is in; -1 for all
};

class LibraryLights : public testing::TestWithParam<BrightLight> {};

// What the light does not reach is as it would be without it.
TEST_P(LibraryLights, LeaveWhatIsDimAsItIs) {
  const BrightLight& light = GetParam();
  Dice dice(7);
  const Shape shape = DrawShape(&dice);
  for (const double emphasis : {1.0, 1.5, 5.0, 20.0, 50.0, 90.0, 500.0}) {
    for (const int edge : {GLIMMERBLUR_REPEAT, GLIMMERBLUR_ZERO}) {
      library_test::Floats source = library_test::Noise(40, 30, 8, 0.0, 1.0, light.channels);
      for (int c = 0; c < light.channels; ++c) {
        source.At(33, 24, c) = light.only < 0 || light.only == c ? light.value : 0.5F;
      }
      glimmerblur_look look = library_test::Look(1.0, emphasis);
      look.shape = GLIMMERBLUR_PICTURE;
      look.edge = edge;
      look.emphasis_alpha = 1;
      const Object object = Make(look);
      library_test::Pixels<std::uint8_t> picture = shape.picture;
      const glimmerblur_frame aperture = picture.Frame();
      ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), &aperture, 0, 0, -1, -1));
      const PlainBlur plain(source.Frame(), look, shape.weights);

      const library_test::Floats dest = Blurred(object, source);

      for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
          const std::vector<double> expected = plain.At(x, y);
          for (int c = 0; c < light.channels; ++c) {
            const double value = expected[static_cast<std::size_t>(c)];
            // A channel that the light is not in has what luma leaves of it.
            const double largest = *std::max_element(expected.begin(), expected.end());
            ASSERT_NEAR(value, dest.At(x, y, c), 2e-5 * std::max(1.0, largest))
                << light.about << " emphasis " << emphasis << " edge " << edge << " at " << x << ','
                << y << ',' << c;
          }
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, LibraryLights,
    testing::Values(BrightLight{"white", 4, 1e6F, -1}, BrightLight{"red", 3, 1e5F, 0},
                    BrightLight{"alpha", 4, 1e4F, 3}, BrightLight{"plane", 1, 1e6F, -1},
                    BrightLight{"sun", 3, 1e9F, -1}, BrightLight{"ten", 3, 10.0F, -1}),
    [](const auto& each) { return std::string(each.param.about); });

}  // namespace
