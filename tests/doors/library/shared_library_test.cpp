// SPDX-License-Identifier: BSD-3-Clause
// The shared library's file, loaded by hand, as a plug-in that wants it has it loaded.
#include "tests/support/shared_library.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "doors/library/glimmerblur.h"
#include "tests/support/process_threads.h"

namespace {

template <class F>
F* Function(void* library, const char* name) {
  const lx_test::AnyFunction function = lx_test::FunctionOf(library, name);
  EXPECT_NE(nullptr, function) << name;
  return reinterpret_cast<F*>(function);
}

// The sum of an impulse of 1000 in the middle of a picture, blurred.
double BlurredSum(void* library) {
  constexpr int kSize = 48;
  constexpr std::size_t kMiddle = kSize / 2 * kSize + kSize / 2;
  std::vector<float> pixels(std::size_t{3} * kSize * kSize);
  pixels[3 * kMiddle] = 1000.0F;
  glimmerblur_options options;
  Function<decltype(glimmerblur_options_init)>(library, "glimmerblur_options_init")(&options);
  options.threads = 3;
  glimmerblur_look look;
  Function<decltype(glimmerblur_look_init)>(library, "glimmerblur_look_init")(&look);
  glimmerblur_frame frame;
  Function<decltype(glimmerblur_frame_init)>(library, "glimmerblur_frame_init")(&frame);
  frame.rect.width = frame.rect.height = kSize;
  frame.channels = 3;
  frame.data = pixels.data();
  glimmerblur* object = nullptr;
  EXPECT_EQ(GLIMMERBLUR_OK, Function<decltype(glimmerblur_create)>(library, "glimmerblur_create")(
                                &options, &object));
  EXPECT_EQ(GLIMMERBLUR_OK, Function<decltype(glimmerblur_set_look)>(
                                library, "glimmerblur_set_look")(object, &look));
  EXPECT_EQ(GLIMMERBLUR_OK, Function<decltype(glimmerblur_render)>(library, "glimmerblur_render")(
                                object, &frame, &frame, nullptr));
  Function<decltype(glimmerblur_destroy)>(library, "glimmerblur_destroy")(object);
  double sum = 0.0;
  for (std::size_t i = 0; i < pixels.size(); i += 3) {
    sum += static_cast<double>(pixels[i]);
  }
  EXPECT_LT(pixels[3 * kMiddle], 10.0F) << "the impulse is where it was";
  return sum;
}

TEST(SharedLibrary, RendersAndLeavesTheProcessWithItsThreads) {
  const int threads = lx_test::ThreadCount();
  for (int i = 0; i < 20; ++i) {
    void* library = lx_test::OpenLibrary(LIBRARY);
    ASSERT_NE(nullptr, library) << lx_test::LibraryError();

    EXPECT_NEAR(1000.0, BlurredSum(library), 0.1);

    lx_test::CloseLibrary(library);
    ASSERT_FALSE(lx_test::IsLibraryOpen(LIBRARY)) << i;
  }
  // One that has been awaited may be listed for another moment.
  EXPECT_LE(lx_test::ThreadCount(), threads + 2);
}

}  // namespace
