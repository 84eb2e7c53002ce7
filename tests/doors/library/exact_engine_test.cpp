// SPDX-License-Identifier: BSD-3-Clause
// The library with the engine exact, which works on 16 bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "tests/doors/library/library_frames.h"

namespace {

using library_test::Blurred;
using library_test::Look;
using library_test::Make;
using Words = library_test::Pixels<std::uint16_t>;

Words NoiseWords(int width, int height, unsigned seed) {
  const library_test::Floats noise = library_test::Noise(width, height, seed);
  Words words(width, height);
  std::transform(noise.samples.begin(), noise.samples.end(), words.samples.begin(),
                 [](float value) { return static_cast<std::uint16_t>(value * 65535.0F); });
  return words;
}

glimmerblur_options Exact() {
  glimmerblur_options options = library_test::Options();
  options.engine = GLIMMERBLUR_EXACT;
  return options;
}

// One object, whose engine would keep what it loaded before in its grid.
TEST(ExactLibrary, GivesWhatFastGivesWhateverWasLoadedBefore) {
  const auto exact = Make(Look(9.0), Exact());
  for (const double radius : {3.0, 12.5, 1.0}) {
    for (const double emphasis : {1.0, 20.0, 60.0}) {
      const glimmerblur_look look = Look(radius, emphasis);
      ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_look(exact.get(), &look));
      const Words source = NoiseWords(70, 51, 1);
      const Words expected = Blurred(look, source);
      const Words got = Blurred(exact, source);
      for (std::size_t i = 0; i < got.samples.size(); ++i) {
        ASSERT_NEAR(expected.samples[i], got.samples[i], 2) << radius << ' ' << emphasis;
      }
    }
  }
}

TEST(ExactLibrary, TakesNoPlanes) {
  const auto exact = Make(Look(3.0), Exact());
  library_test::Floats planes(20, 20, 2);
  const glimmerblur_frame frame = planes.Frame();
  EXPECT_EQ(GLIMMERBLUR_INVALID_FRAME, glimmerblur_render(exact.get(), &frame, &frame, nullptr));
  EXPECT_STREQ("The engine exact takes RGBA alone, and the frames are planes.",
               glimmerblur_message(exact.get()));
}

}  // namespace
