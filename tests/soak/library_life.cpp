// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>

#include "doors/library/glimmerblur.h"
#include "tests/mutations/mutator.h"
#include "tests/soak/hash.h"
#include "tests/soak/life.h"

namespace soak {
namespace {

using mutations::Mutator;

constexpr std::size_t kBytesOf[] = {1, 2, 4};  // of a sample, by glimmerblur_sample

struct Destroy {
  void operator()(glimmerblur* object) const { glimmerblur_destroy(object); }
};
using Object = std::unique_ptr<glimmerblur, Destroy>;

// A frame with its samples.
struct Samples {
  glimmerblur_frame frame;
  std::vector<unsigned char> bytes;

  Samples(int width, int height, int channels, int sample) {
    glimmerblur_frame_init(&frame);
    frame.rect = {0, 0, width, height};
    frame.sample = sample;
    frame.channels = channels;
    frame.layout = channels == 3 || channels == 4 ? GLIMMERBLUR_RGBA : GLIMMERBLUR_PLANES;
    bytes.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                 static_cast<std::size_t>(channels) * kBytesOf[sample]);
    frame.data = bytes.data();
  }
  Samples(const Samples&) = delete;
  Samples& operator=(const Samples&) = delete;

  // Floats up to 2, with some that are none.
  void Fill(Mutator* dice) {
    if (frame.sample != GLIMMERBLUR_FLOAT) {
      for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(dice->Below(256));
      }
      return;
    }
    for (std::size_t at = 0; at < bytes.size(); at += sizeof(float)) {
      const float value = dice->OneIn(500) ? std::numeric_limits<float>::quiet_NaN()
                                           : static_cast<float>(dice->Below(2048)) / 1024.0F;
      std::memcpy(bytes.data() + at, &value, sizeof value);
    }
  }
};

int Side(Mutator* dice) { return 1 + static_cast<int>(dice->Below(dice->OneIn(10) ? 220 : 64)); }

Object Make(Mutator* dice) {
  glimmerblur_options options;
  glimmerblur_options_init(&options);
  options.threads = 1 + static_cast<int>(dice->Below(4));
  options.memory_limit = dice->OneIn(3) ? 200000 + dice->Below(2000000) : 0;
  glimmerblur* made = nullptr;
  glimmerblur_create(&options, &made);
  return Object(made);
}

// One in eight is refused.
glimmerblur_look AnyLook(Mutator* dice) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = static_cast<int>(dice->Below(4));
  look.sides = 3 + static_cast<int>(dice->Below(48));
  look.radius_x = static_cast<double>(dice->Below(200)) / 10.0;
  look.radius_y = static_cast<double>(dice->Below(200)) / 10.0;
  look.rotation = static_cast<double>(dice->Below(360));
  look.pixel_aspect = dice->AnyOf<double>({1.0, 1.0, 2.0, 0.5});
  look.emphasis = dice->AnyOf<double>({0.0, 1.0, 20.0, 90.0, 500.0});
  look.blur_alpha = dice->OneIn(4) ? 0 : 1;
  look.emphasis_alpha = dice->OneIn(4) ? 1 : 0;
  look.edge = dice->OneIn(2) ? GLIMMERBLUR_ZERO : GLIMMERBLUR_REPEAT;
  look.centred = dice->OneIn(3) ? 0 : 1;
  if (dice->OneIn(8)) {
    look.radius_x = dice->AnyOf<double>({-1.0, std::numeric_limits<double>::quiet_NaN(), 9000.0});
  }
  return look;
}

glimmerblur_status GiveAperture(Mutator* dice, glimmerblur* object) {
  Samples picture(1 + static_cast<int>(dice->Below(24)), 1 + static_cast<int>(dice->Below(24)), 1,
                  static_cast<int>(dice->Below(2)));
  picture.Fill(dice);
  return glimmerblur_set_aperture(object, &picture.frame, picture.frame.rect.width / 2.0,
                                  picture.frame.rect.height / 2.0, dice->OneIn(2) ? -1.0 : 2.0,
                                  dice->OneIn(2) ? -1.0 : 9.0);
}

std::int32_t CountDown(void* left, double /*done*/) { return --*static_cast<int*>(left) == 0; }

// How often it is asked depends on how the threads share their work, and so does whether this
// cancels anything. What is sure: the destination holds what it held.
std::uint64_t CancelOne(Mutator* dice, glimmerblur* object, const Samples& source,
                        const Samples& destination) {
  int left = 1 + static_cast<int>(dice->Below(8));
  glimmerblur_set_progress(object, CountDown, &left);
  const glimmerblur_status status =
      glimmerblur_render(object, &source.frame, &destination.frame, nullptr);
  glimmerblur_set_progress(object, nullptr, nullptr);
  const bool isChanged = std::any_of(destination.bytes.begin(), destination.bytes.end(),
                                     [](unsigned char byte) { return byte != 0; });
  return status != GLIMMERBLUR_OK && isChanged ? 1U : 0U;
}

// The destination with what was answered.
std::uint64_t RenderOne(Mutator* dice, glimmerblur* object) {
  const int channels = dice->OneIn(3) ? 1 + static_cast<int>(dice->Below(6)) : 4;
  Samples source(Side(dice), Side(dice), channels, static_cast<int>(dice->Below(3)));
  source.Fill(dice);
  const glimmerblur_rect rect = source.frame.rect;
  Samples destination(dice->OneIn(20) ? Side(dice) : rect.width, rect.height, channels,
                      static_cast<int>(dice->Below(3)));
  if (dice->OneIn(30)) {
    destination.frame.data = nullptr;
  }
  if (dice->OneIn(6)) {
    return CancelOne(dice, object, source, destination);
  }
  const glimmerblur_status status =
      glimmerblur_render(object, &source.frame, &destination.frame, nullptr);
  return HashOf(destination.bytes) + static_cast<std::uint64_t>(status);
}

}  // namespace

Hashes LiveLibrary(const LifeKey& key) {
  Mutator dice(key.seed);
  const Object object = Make(&dice);
  Hashes hashes;
  for (std::size_t left = 1 + dice.Below(10); left > 0; --left) {
    std::uint64_t answers = 0;
    if (hashes.empty() || dice.OneIn(2)) {
      const glimmerblur_look look = AnyLook(&dice);
      answers += static_cast<std::uint64_t>(glimmerblur_set_look(object.get(), &look));
    }
    if (dice.OneIn(3)) {
      answers += 16U * static_cast<std::uint64_t>(GiveAperture(&dice, object.get()));
    }
    hashes.push_back(RenderOne(&dice, object.get()) + 256 * answers);
  }
  return hashes;
}

}  // namespace soak
