// SPDX-License-Identifier: BSD-3-Clause
// A frame by the library's C interface, for tests in other languages to compare with.
//
//   render_raw KEY=VALUE... <samples >samples
//
// Samples come and go without gaps, channel beside channel. The keys are those of the records, and
// width, height, channels, sample, layout, alpha and first_row of both frames.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "doors/library/glimmerblur.h"

namespace {

using Numbers = std::map<std::string, double>;

Numbers Parse(int count, char** words) {
  Numbers numbers;
  for (int i = 1; i < count; ++i) {
    const char* equals = std::strchr(words[i], '=');
    if (equals == nullptr) {
      std::fprintf(stderr, "%s: has no =\n", words[i]);
      std::exit(2);
    }
    numbers[std::string(words[i], equals - words[i])] = std::atof(equals + 1);
  }
  return numbers;
}

// Takes a number out, so that in the end none may be left.
template <typename Member>
void Take(Numbers* numbers, const char* key, Member* member) {
  const auto found = numbers->find(key);
  if (found != numbers->end()) {
    *member = static_cast<Member>(found->second);
    numbers->erase(found);
  }
}

glimmerblur_look TakeLook(Numbers* numbers) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  Take(numbers, "shape", &look.shape);
  Take(numbers, "sides", &look.sides);
  Take(numbers, "radius_x", &look.radius_x);
  Take(numbers, "radius_y", &look.radius_y);
  Take(numbers, "rotation", &look.rotation);
  Take(numbers, "pixel_aspect", &look.pixel_aspect);
  Take(numbers, "emphasis", &look.emphasis);
  Take(numbers, "blur_alpha", &look.blur_alpha);
  Take(numbers, "emphasis_alpha", &look.emphasis_alpha);
  Take(numbers, "edge", &look.edge);
  Take(numbers, "centred", &look.centred);
  return look;
}

glimmerblur_frame TakeFrame(Numbers* numbers) {
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  Take(numbers, "width", &frame.rect.width);
  Take(numbers, "height", &frame.rect.height);
  Take(numbers, "channels", &frame.channels);
  Take(numbers, "sample", &frame.sample);
  Take(numbers, "layout", &frame.layout);
  Take(numbers, "alpha", &frame.alpha);
  Take(numbers, "first_row", &frame.first_row);
  return frame;
}

int Fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  return 1;
}

}  // namespace

int main(int count, char** words) {
  Numbers numbers = Parse(count, words);
  const glimmerblur_look look = TakeLook(&numbers);
  glimmerblur_frame frame = TakeFrame(&numbers);
  if (!numbers.empty()) {
    return Fail((numbers.begin()->first + ": unknown").c_str());
  }
  const std::size_t sampleBytes = std::size_t{1} << frame.sample;
  std::vector<char> samples(sampleBytes * frame.rect.width * frame.rect.height * frame.channels);
  if (std::fread(samples.data(), 1, samples.size(), stdin) != samples.size()) {
    return Fail("too few samples");
  }
  frame.data = samples.data();
  glimmerblur* object = nullptr;
  if (glimmerblur_create(nullptr, &object) != GLIMMERBLUR_OK) {
    return Fail("no object");
  }
  if (glimmerblur_set_look(object, &look) != GLIMMERBLUR_OK ||
      glimmerblur_render(object, &frame, &frame, nullptr) != GLIMMERBLUR_OK) {
    return Fail(glimmerblur_message(object));
  }
  glimmerblur_destroy(object);
  std::fwrite(samples.data(), 1, samples.size(), stdout);
  return 0;
}
