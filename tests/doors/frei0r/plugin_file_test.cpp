// SPDX-License-Identifier: BSD-3-Clause
// Both files, called as programs call them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/doors/frei0r/library_frames.h"
#include "tests/doors/frei0r/plugin.h"

namespace {

using lx_test::Frei0rFile;
using lx_test::Frei0rInstance;
using lx_test::LibraryFrame;
using lx_test::Lights;
using lx_test::Pixels;

enum FilterIndex {
  kRadius,
  kEmphasis,
  kSides,
  kHeight,
  kRotation,
  kPixelAspect,
  kBlurAlpha,
  kEmphasiseAlpha,
  kPremultiplied,
  kBlackAround,
  kCentred
};

struct Described {
  std::string name;
  int type;
  double initial;

  bool operator==(const Described&) const = default;
};

std::vector<Described> ParametersOf(const Frei0rFile& file) {
  const Frei0rInstance instance(file, 16, 16);
  f0r_plugin_info_t info{};
  file.info(&info);
  std::vector<Described> parameters;
  for (int i = 0; i < info.num_params; ++i) {
    f0r_param_info_t parameter{};
    file.paramInfo(&parameter, i);
    EXPECT_FALSE(std::string(parameter.explanation).empty()) << i;
    parameters.push_back({parameter.name, parameter.type, instance.Get(i)});
  }
  return parameters;
}

glimmerblur_look Look() {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = GLIMMERBLUR_ELLIPSE;
  return look;
}

TEST(Frei0rFilter, SaysWhatItIs) {
  const Frei0rFile file(FILTER);
  f0r_plugin_info_t info{};

  file.info(&info);

  EXPECT_STREQ("GlimmerBlur", info.name);
  EXPECT_EQ(F0R_PLUGIN_TYPE_FILTER, info.plugin_type);
  EXPECT_EQ(F0R_COLOR_MODEL_RGBA8888, info.color_model);
  EXPECT_EQ(1, info.frei0r_version);
  EXPECT_EQ(VERSION, std::to_string(info.major_version) + "." + std::to_string(info.minor_version));
}

TEST(Frei0rMixer, SaysWhatItIs) {
  const Frei0rFile file(MIXER);
  f0r_plugin_info_t info{};

  file.info(&info);

  EXPECT_STREQ("GlimmerBlur aperture", info.name);
  EXPECT_EQ(F0R_PLUGIN_TYPE_MIXER2, info.plugin_type);
  EXPECT_EQ(F0R_COLOR_MODEL_RGBA8888, info.color_model);
}

// Projects of editors keep numbers and names.
TEST(Frei0rFilter, KeepsTheOrderOfItsParameters) {
  constexpr int kNumber = F0R_PARAM_DOUBLE;
  constexpr int kSwitch = F0R_PARAM_BOOL;
  EXPECT_EQ((std::vector<Described>{{"Radius", kNumber, 0.2},
                                    {"Emphasis", kNumber, 0.0},
                                    {"Sides", kNumber, 0.0},
                                    {"Height", kNumber, 0.5},
                                    {"Rotation", kNumber, 0.0},
                                    {"Pixel aspect", kNumber, 0.5},
                                    {"Blur alpha", kSwitch, 1.0},
                                    {"Emphasise alpha", kSwitch, 0.0},
                                    {"Premultiplied", kSwitch, 0.0},
                                    {"Black around", kSwitch, 0.0},
                                    {"Centred", kSwitch, 1.0}}),
            ParametersOf(Frei0rFile(FILTER)));
}

TEST(Frei0rMixer, KeepsTheOrderOfItsParameters) {
  constexpr int kNumber = F0R_PARAM_DOUBLE;
  constexpr int kSwitch = F0R_PARAM_BOOL;
  EXPECT_EQ((std::vector<Described>{{"Radius", kNumber, 0.5},
                                    {"Emphasis", kNumber, 0.0},
                                    {"Core", kNumber, 0.9},
                                    {"Centre X", kNumber, 0.5},
                                    {"Centre Y", kNumber, 0.5},
                                    {"Blur alpha", kSwitch, 1.0},
                                    {"Emphasise alpha", kSwitch, 0.0},
                                    {"Premultiplied", kSwitch, 0.0},
                                    {"Black around", kSwitch, 0.0}}),
            ParametersOf(Frei0rFile(MIXER)));
}

TEST(Frei0rFilter, GivesBackEachValueThatWasSet) {
  const Frei0rFile file(FILTER);
  Frei0rInstance instance(file, 16, 16);
  for (int i = 0; i <= kCentred; ++i) {
    instance.Set(i, 0.25 + i / 100.0);
  }

  instance.Update(Lights(16, 16, 1, true));

  for (int i = 0; i <= kCentred; ++i) {
    EXPECT_EQ(0.25 + i / 100.0, instance.Get(i)) << i;
  }
}

TEST(Frei0rFilter, BringsValuesIntoTheirRange) {
  const Frei0rFile file(FILTER);
  Frei0rInstance instance(file, 16, 16);

  instance.Set(kRadius, 7.0);
  instance.Set(kSides, -1.0);
  instance.Set(kRotation, std::numeric_limits<double>::infinity());

  EXPECT_EQ(1.0, instance.Get(kRadius));
  EXPECT_EQ(0.0, instance.Get(kSides));
  EXPECT_EQ(1.0, instance.Get(kRotation));
}

TEST(Frei0rFilter, KeepsItsValueWhereNoNumberComes) {
  const Frei0rFile file(FILTER);
  Frei0rInstance instance(file, 16, 16);

  instance.Set(kRadius, std::nan(""));
  instance.Set(-1, 0.7);
  instance.Set(11, 0.7);

  EXPECT_EQ(0.2, instance.Get(kRadius));
  EXPECT_EQ(0.0, instance.Get(-1));
  EXPECT_EQ(0.0, instance.Get(11));
}

TEST(Frei0rFilter, MakesNoInstanceForAnEmptyFrame) {
  const Frei0rFile file(FILTER);

  EXPECT_FALSE(Frei0rInstance(file, 0, 16).IsThere());
  EXPECT_FALSE(Frei0rInstance(file, 16, 0).IsThere());
  EXPECT_FALSE(Frei0rInstance(file, 0, 0).IsThere());
}

struct Case {
  const char* name;
  std::vector<std::pair<int, double>> values;
  glimmerblur_look look;  // of a frame 101 pixels wide
  std::int32_t alpha = GLIMMERBLUR_STRAIGHT;
};

template <class Change>
glimmerblur_look Changed(Change change) {
  glimmerblur_look look = Look();
  look.radius_x = 2.02;
  look.radius_y = 2.02;
  change(&look);
  return look;
}

std::vector<Case> Cases() {
  const glimmerblur_look plain = Changed([](auto*) {});
  return {
      {"as it comes", {}, plain},
      {"radius", {{kRadius, 0.5}}, Changed([](auto* look) {
         look->radius_x = look->radius_y = 5.05;
       })},
      {"emphasis", {{kEmphasis, 0.4}}, Changed([](auto* look) { look->emphasis = 8.0; })},
      {"two sides are none", {{kSides, 0.2}}, plain},
      {"hexagon", {{kSides, 0.6}, {kRadius, 0.5}}, Changed([](auto* look) {
         look->shape = GLIMMERBLUR_POLYGON;
         look->sides = 6;
         look->radius_x = look->radius_y = 5.05;
       })},
      {"height", {{kHeight, 0.75}, {kRadius, 0.5}}, Changed([](auto* look) {
         look->radius_x = 5.05;
         look->radius_y = 7.575;
       })},
      {"rotation", {{kHeight, 0.25}, {kRadius, 1.0}, {kRotation, 0.125}}, Changed([](auto* look) {
         look->radius_x = 10.1;
         look->radius_y = 5.05;
         look->rotation = 45.0;
       })},
      {"pixel aspect", {{kPixelAspect, 0.75}, {kRadius, 0.5}}, Changed([](auto* look) {
         look->radius_x = look->radius_y = 5.05;
         look->pixel_aspect = 1.5;
       })},
      {"no pixel is without width", {{kPixelAspect, 0.0}}, Changed([](auto* look) {
         look->pixel_aspect = 0.01;
       })},
      {"alpha kept", {{kBlurAlpha, 0.0}}, Changed([](auto* look) { look->blur_alpha = 0; })},
      {"alpha emphasised", {{kEmphasiseAlpha, 0.5}, {kEmphasis, 0.4}}, Changed([](auto* look) {
         look->emphasis_alpha = 1;
         look->emphasis = 8.0;
       })},
      {"premultiplied", {{kPremultiplied, 1.0}}, plain, GLIMMERBLUR_PREMULTIPLIED},
      {"black around", {{kBlackAround, 1.0}}, Changed([](auto* look) {
         look->edge = GLIMMERBLUR_ZERO;
       })},
      {"beside its point", {{kCentred, 0.0}}, Changed([](auto* look) { look->centred = 0; })}};
}

// A glow that darkens slowly, as a lamp in mist has it, in 8 bits and in float.
TEST(Frei0rFilter, KeepsAGlowSmoothAtItsGreatestEmphasis) {
  constexpr int kWidth = 480;
  constexpr int kHeight = 200;
  std::vector<float> inFloat;
  Pixels in;
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const double x = i % kWidth - 240;
    const double y = i / kWidth - 100;
    const double light = std::exp(-(x * x + y * y) / (2 * 40 * 40));
    inFloat.insert(inFloat.end(), 3, static_cast<float>(light));
    in.push_back(0xFF000000U | 0x010101U * static_cast<std::uint32_t>(std::lround(255 * light)));
  }
  glimmerblur_look look = Look();
  look.radius_x = look.radius_y = 38.4;
  look.emphasis = 20.0;
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  frame.rect = {0, 0, kWidth, kHeight};
  frame.channels = 3;
  frame.data = inFloat.data();
  glimmerblur* object = nullptr;
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_create(nullptr, &object));
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_look(object, &look));
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object, &frame, &frame, nullptr));
  glimmerblur_destroy(object);
  const Frei0rFile file(FILTER);
  Frei0rInstance instance(file, kWidth, kHeight);
  instance.Set(kRadius, 0.8);
  instance.Set(kEmphasis, 1.0);

  const Pixels out = instance.Update(in);

  double worst = 0.0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    worst = std::max(worst, std::abs((out[i] >> 8 & 0xFF) - 255.0 * inFloat[3 * i + 1]));
  }
  EXPECT_LE(worst, 2.5) << "steps; half of one is rounding";
}

// 101 x 37: programs hand in frames of sizes that the format does not foresee.
TEST(Frei0rFilter, MakesTheFrameOfTheLibrary) {
  const Frei0rFile file(FILTER);
  const Pixels in = Lights(101, 37, 2, false);
  const Pixels plain = LibraryFrame(Cases()[0].look, in, 101, 37);
  for (const Case& one : Cases()) {
    Frei0rInstance instance(file, 101, 37);
    for (const auto& [index, value] : one.values) {
      instance.Set(index, value);
    }

    const Pixels out = instance.Update(in);

    EXPECT_EQ(LibraryFrame(one.look, in, 101, 37, one.alpha), out) << one.name;
    const bool isPlain = one.values.empty() || one.name == std::string("two sides are none");
    EXPECT_EQ(isPlain, plain == out) << one.name << ": the parameter changes nothing";
  }
}

TEST(Frei0rFilter, LeavesTheFrameAtNoRadius) {
  const Frei0rFile file(FILTER);
  Frei0rInstance instance(file, 33, 9);
  instance.Set(kRadius, 0.0);
  const Pixels in = Lights(33, 9, 3, true);

  EXPECT_EQ(in, instance.Update(in));
}

TEST(Frei0rFilter, MakesTheSameFrameByBothFunctions) {
  const Frei0rFile file(FILTER);
  Frei0rInstance instance(file, 40, 24);
  const Pixels in = Lights(40, 24, 4, true);

  EXPECT_EQ(instance.Update(in), instance.Update(in, Pixels(in.size())));
}

TEST(Frei0rFilter, MakesTheFrameInItsOwnPlace) {
  const Frei0rFile file(FILTER);
  Frei0rInstance instance(file, 40, 24);
  Pixels frame = Lights(40, 24, 5, true);
  const Pixels expected = instance.Update(frame);
  const f0r_instance_t other = file.construct(40, 24);

  file.update(other, 0.0, frame.data(), frame.data());

  file.destruct(other);
  EXPECT_EQ(expected, frame);
}

// Each thread makes, uses and destroys instances of its own; what it gets is what one alone gets.
TEST(Frei0rFilter, ServesInstancesOnSeveralThreadsAtOnce) {
  const Frei0rFile file(FILTER);
  constexpr int kThreads = 4;
  std::vector<Pixels> frames;
  std::vector<Pixels> expected;
  for (int i = 0; i < kThreads; ++i) {
    frames.push_back(Lights(96 + 8 * i, 64, static_cast<unsigned>(i), true));
    glimmerblur_look look = Look();
    look.radius_x = look.radius_y = 0.1 * (0.2 + 0.1 * i) * (96 + 8 * i);
    look.emphasis = 4.0;
    expected.push_back(LibraryFrame(look, frames.back(), 96 + 8 * i, 64));
  }
  std::vector<int> wrong(kThreads);

  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      const auto slot = static_cast<std::size_t>(i);
      for (int round = 0; round < 5; ++round) {
        Frei0rInstance instance(file, static_cast<unsigned>(96 + 8 * i), 64);
        instance.Set(kRadius, 0.2 + 0.1 * i);
        instance.Set(kEmphasis, 0.2);
        wrong[slot] += instance.Update(frames[slot]) != expected[slot] ? 1 : 0;
        wrong[slot] += instance.Update(frames[slot]) != expected[slot] ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(std::vector<int>(kThreads), wrong);
}

// A red that is nowhere the same, and like none of its mirror images.
Pixels Aperture(int width, int height) {
  Pixels pixels;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      pixels.push_back(0xFF000000U | static_cast<std::uint32_t>((23 * x + 7 * y * y) % 251));
    }
  }
  return pixels;
}

glimmerblur_look PictureLook() {
  glimmerblur_look look = Look();
  look.shape = GLIMMERBLUR_PICTURE;
  return look;
}

TEST(Frei0rMixer, MakesTheFrameOfTheLibrary) {
  const Frei0rFile file(MIXER);
  Frei0rInstance instance(file, 102, 40);
  const Pixels in = Lights(102, 40, 6, false);
  const Pixels aperture = Aperture(102, 40);
  instance.Set(0, 0.8);
  instance.Set(1, 0.3);
  instance.Set(2, 0.75);
  instance.Set(3, 0.45);
  instance.Set(4, 0.6);
  glimmerblur_look look = PictureLook();
  look.emphasis = 6.0;

  EXPECT_EQ(LibraryFrame(look, in, 102, 40, GLIMMERBLUR_STRAIGHT, &aperture,
                         {0.45 * 102, 0.6 * 40, 0.75 * 8.16, 8.16}),
            instance.Update(in, aperture));
}

TEST(Frei0rMixer, SwitchesWhatTheFilterSwitches) {
  const Frei0rFile file(MIXER);
  const Pixels in = Lights(64, 40, 7, false);
  const Pixels aperture = Aperture(64, 40);
  for (const int index : {5, 6, 7, 8}) {
    Frei0rInstance instance(file, 64, 40);
    instance.Set(1, 0.2);
    instance.Set(index, index == 5 ? 0.0 : 1.0);
    glimmerblur_look look = PictureLook();
    look.emphasis = 4.0;
    look.blur_alpha = index == 5 ? 0 : 1;
    look.emphasis_alpha = index == 6 ? 1 : 0;
    look.edge = index == 8 ? GLIMMERBLUR_ZERO : GLIMMERBLUR_REPEAT;

    EXPECT_EQ(LibraryFrame(look, in, 64, 40,
                           index == 7 ? GLIMMERBLUR_PREMULTIPLIED : GLIMMERBLUR_STRAIGHT, &aperture,
                           {32.0, 20.0, 0.9 * 3.2, 3.2}),
              instance.Update(in, aperture))
        << index;
  }
}

TEST(Frei0rMixer, FollowsAnApertureThatMoves) {
  const Frei0rFile file(MIXER);
  Frei0rInstance instance(file, 64, 40);
  Frei0rInstance fresh(file, 64, 40);
  const Pixels in = Lights(64, 40, 8, true);
  Pixels moved = Aperture(64, 40);
  const Pixels before = instance.Update(in, moved);
  std::rotate(moved.begin(), moved.begin() + 2, moved.end());

  const Pixels after = instance.Update(in, moved);

  EXPECT_NE(before, after);
  EXPECT_EQ(fresh.Update(in, moved), after);
}

// Programs are not to call it so; one that does loses no frame.
TEST(Frei0rMixer, LeavesAFrameThatComesWithoutAperture) {
  const Frei0rFile file(MIXER);
  Frei0rInstance instance(file, 64, 40);
  const Pixels in = Lights(64, 40, 9, true);

  EXPECT_EQ(in, instance.Update(in));
  EXPECT_NE(in, instance.Update(in, Aperture(64, 40)));
  EXPECT_EQ(in, instance.Update(in));
}

TEST(Frei0rFiles, LeaveTheProcessWhenTheyAreClosed) {
  for (const char* name : {FILTER, MIXER}) {
    {
      const Frei0rFile file(name);
      Frei0rInstance instance(file, 64, 40);
      instance.Update(Lights(64, 40, 10, true), Aperture(64, 40));
      ASSERT_TRUE(lx_test::IsLibraryOpen(name));
      ASSERT_EQ(LIBRARY_IS_SHARED, lx_test::IsLibraryOpen(LIBRARY) ? 1 : 0);
    }
    EXPECT_FALSE(lx_test::IsLibraryOpen(name)) << name;
    EXPECT_FALSE(lx_test::IsLibraryOpen(LIBRARY)) << name;
  }
}

}  // namespace
