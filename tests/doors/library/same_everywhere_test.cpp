// SPDX-License-Identifier: BSD-3-Clause
// One shot, and the hashes of its frames: the same for every form of the operations, on every
// processor and system.
//
// The hashes are what the library gave when they were written down. They tell that machines which
// never meet agree, and not that frames are right: others hold frames of all kinds against plain
// sums, plain_blur.h and float_frames_test.cpp among them.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <ostream>
#include <string>

#include "fftlib/backends/fast/line_operations.h"
#include "fftlib/planes/row_operations.h"
#include "tests/doors/library/library_frames.h"
#include "tests/fftlib/backends/fast/hash.h"

namespace {

using library_test::Blurred;
using library_test::Floats;
using library_test::Look;
using library_test::Make;
using library_test::Noise;
using library_test::Object;
using library_test::Pixels;

struct Form {
  const char* name;
  const lx::RowOperations* (*rows)();
  const lx::LineOperations* (*lines)();
};

const lx::RowOperations* PlainRows() { return &lx::PlainRowOperations(); }

// Vectors of 128 bits have no rows of their own.
constexpr Form kForms[] = {
    {"plain", PlainRows, [] { return &lx::PlainLineOperations(); }},
    {"vectors128", PlainRows, [] { return &lx::Vector128LineOperations(); }},
    {"avx2", lx::Avx2RowOperations, lx::Avx2LineOperations},
    {"avx512", lx::Avx512RowOperations, lx::Avx512LineOperations},
};

std::ostream& operator<<(std::ostream& out, const Form& form) { return out << form.name; }

struct ShotFrame {
  std::int32_t shape;
  double emphasis;
  std::uint64_t whole;  // of 16 bits
  std::uint64_t floats;
};

// As it stands in the table below.
std::ostream& operator<<(std::ostream& out, const ShotFrame& frame) {
  constexpr const char* kShapes[] = {"CIRCLE", "ELLIPSE", "POLYGON", "PICTURE"};
  return out << "    {GLIMMERBLUR_" << kShapes[frame.shape] << ", " << frame.emphasis << ", 0x"
             << std::hex << frame.whole << ", 0x" << frame.floats << std::dec << "},";
}

// Where a number of the arithmetic is raised, these may become others: each failure prints the line
// that takes the place of the old one.
//   shape, emphasis, hash in 16 bits, hash in floats
constexpr ShotFrame kShot[] = {
    {GLIMMERBLUR_CIRCLE, 1, 0x1e76c8027516aa34, 0x4b009a13b8a11d1f},
    {GLIMMERBLUR_CIRCLE, 20, 0x4dbc3a5a30225b37, 0x9329004e9aabf2c8},
    {GLIMMERBLUR_CIRCLE, 75, 0xad5213d221559aae, 0x711751768218cada},
    {GLIMMERBLUR_CIRCLE, 300, 0xa762f0e7aea9284f, 0xcc1852fed8f70b88},
    {GLIMMERBLUR_ELLIPSE, 1, 0xb009c8af26fd56fa, 0xbfc8b6f47b4ebc46},
    {GLIMMERBLUR_ELLIPSE, 20, 0x3ec11fd84caa74c7, 0x359afdc0ce1fc8f9},
    {GLIMMERBLUR_ELLIPSE, 75, 0xa69d5aa03efb45bd, 0x8d066daa8bcff51},
    {GLIMMERBLUR_ELLIPSE, 300, 0xf8c8a2fe35fe52b2, 0xcc00fcc661005d7a},
    {GLIMMERBLUR_POLYGON, 1, 0xc20e9751f9e52a4, 0xfdc7860b2f02eb5b},
    {GLIMMERBLUR_POLYGON, 20, 0xc5977b20b0af55d3, 0x85036b4b38f7a1bb},
    {GLIMMERBLUR_POLYGON, 75, 0x2d2060260d907fe7, 0x2a19e6bea2fdd179},
    {GLIMMERBLUR_POLYGON, 300, 0x5d27feae174669e9, 0x7115234e5a46e2b4},
    {GLIMMERBLUR_PICTURE, 1, 0xe206ca9cca9dfb82, 0x6f43a04816b6b8a5},
    {GLIMMERBLUR_PICTURE, 20, 0x9b638faea4582ed7, 0xd444546c1e4defa2},
    {GLIMMERBLUR_PICTURE, 75, 0x93f7c214e266a04e, 0x42081951ebe21246},
    {GLIMMERBLUR_PICTURE, 300, 0x87297244f0fba1fe, 0xb715566f892e822},
};

// Each frame is blurred and emphasised in alpha or not, has one edge or the other, and stands where
// the module or where a person would have it.
glimmerblur_look LookOf(const ShotFrame& frame, std::size_t number) {
  glimmerblur_look look = Look(9.5, frame.emphasis);
  look.shape = frame.shape;
  look.radius_y = 6.25;
  look.rotation = 17.0 + 10.0 * static_cast<double>(number);
  look.sides = 5 + static_cast<std::int32_t>(number % 4);
  look.pixel_aspect = number % 5 == 0 ? 1.4 : 1.0;
  look.blur_alpha = number % 3 != 0;
  look.emphasis_alpha = number % 2 != 0;
  look.edge = number / 2 % 2 != 0 ? GLIMMERBLUR_ZERO : GLIMMERBLUR_REPEAT;
  look.centred = number / 4 % 2 == 0;
  return look;
}

template <class Sample>
std::uint64_t HashOfFrame(const ShotFrame& frame, std::size_t number,
                          const Pixels<Sample>& source) {
  const Object object = Make(LookOf(frame, number));
  Floats aperture = Noise(13, 11, 99);
  const glimmerblur_frame picture = aperture.Frame();
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), &picture, 6.5, 5.0, 3.0, 6.0));
  const Pixels<Sample> blurred = Blurred(object, source);
  return lx_test::HashOf(blurred.samples.data(), blurred.samples.size() * sizeof(Sample));
}

// A few samples are much brighter than the others, as they are that one blurs frames for. Among
// floats by so much that the last bits of their sums are seen in the others: elsewhere all forms
// could round differently, and floats and 16 bits would hide it.
Floats SourceOf(std::size_t number, double low, double high) {
  Floats source = Noise(120, 68, static_cast<unsigned>(number), low, 0.25);
  for (std::size_t i = number; i < source.samples.size(); i += 211) {
    source.samples[i] = static_cast<float>(high);
  }
  return source;
}

class SameEverywhere : public testing::TestWithParam<Form> {};

TEST_P(SameEverywhere, AreTheFramesOfAShot) {
  const lx::RowOperations* const rows = GetParam().rows();
  const lx::LineOperations* const lines = GetParam().lines();
  if (rows == nullptr || lines == nullptr) {
    GTEST_SKIP() << "this processor, or this build, has no " << GetParam().name;
  }
  const lx::ScopedRowOperations rowScope(rows);
  const lx::ScopedLineOperations lineScope(lines);
  for (std::size_t i = 0; i < std::size(kShot); ++i) {
    const Floats source = SourceOf(i, -0.125, 65536.0);
    const Floats unit = SourceOf(i, 0.0, 1.0);
    Pixels<std::uint16_t> whole(unit.width, unit.height);
    for (std::size_t at = 0; at < whole.samples.size(); ++at) {
      whole.samples[at] =
          static_cast<std::uint16_t>(static_cast<double>(unit.samples[at]) * 65535.0);
    }

    ShotFrame got = kShot[i];
    got.whole = HashOfFrame(kShot[i], i, whole);
    got.floats = HashOfFrame(kShot[i], i, source);

    EXPECT_TRUE(kShot[i].whole == got.whole && kShot[i].floats == got.floats) << got;
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, SameEverywhere, testing::ValuesIn(kForms),
                         [](const testing::TestParamInfo<Form>& form) {
                           return std::string(form.param.name);
                         });

}  // namespace
