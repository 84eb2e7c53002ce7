// SPDX-License-Identifier: BSD-3-Clause
// libglimmerblur from C++: glimmerblur.h, which says what everything means, with objects that end
// by themselves and failures that are thrown. All in this header.
//
//   glimmer::Defocus defocus;
//   glimmer::Look look;
//   look.shape = GLIMMERBLUR_POLYGON;
//   defocus.SetLook(look);
//   glimmer::Frame frame(1920, 1080, pixels);
//   defocus.Render(frame, frame);
#ifndef GLIMMERBLUR_HPP
#define GLIMMERBLUR_HPP

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "glimmerblur.h"

namespace glimmer {

// What a call failed of: its sentence, and its status.
class Error : public std::runtime_error {
 public:
  Error(glimmerblur_status status, const std::string& message)
      : std::runtime_error(message), status_(status) {}
  glimmerblur_status Status() const { return status_; }

 private:
  glimmerblur_status status_;
};

// The records, filled as the _init functions do.
struct Options : glimmerblur_options {
  Options() { glimmerblur_options_init(this); }
};
struct Look : glimmerblur_look {
  Look() { glimmerblur_look_init(this); }
};
struct Frame : glimmerblur_frame {
  Frame() { glimmerblur_frame_init(this); }
  // Packed RGBA floats.
  Frame(std::int32_t width, std::int32_t height, float* samples) : Frame() {
    rect = {0, 0, width, height};
    data = samples;
  }
};

class Defocus {
 public:
  explicit Defocus(const Options& options = Options()) {
    ::glimmerblur* made = nullptr;
    const glimmerblur_status status = glimmerblur_create(&options, &made);
    object_.reset(made);
    if (status != GLIMMERBLUR_OK) {
      throw Error(status, glimmerblur_status_text(status));
    }
  }

  void SetLook(const Look& look) { Check(glimmerblur_set_look(object_.get(), &look)); }

  // The whole picture as the aperture, or a disc of it.
  void SetAperture(const Frame& picture) { SetAperture(picture, 0.0, 0.0, -1.0, -1.0); }
  void SetAperture(const Frame& picture, double centreX, double centreY, double inner,
                   double outer) {
    Check(glimmerblur_set_aperture(object_.get(), &picture, centreX, centreY, inner, outer));
  }

  // Told how much is done, 0 to 1; true cancels. It must not throw. An empty one is not asked.
  void SetProgress(std::function<bool(double done)> progress) {
    progress_ = std::make_unique<std::function<bool(double)>>(std::move(progress));
    const auto ask = [](void* user, double done) -> std::int32_t {
      return (*static_cast<std::function<bool(double)>*>(user))(done) ? 1 : 0;
    };
    glimmerblur_set_progress(object_.get(), *progress_ ? +ask : nullptr, progress_.get());
  }

  glimmerblur_rect RegionNeeded(const glimmerblur_rect& whole, std::int32_t firstRow,
                                const glimmerblur_rect& wanted) {
    glimmerblur_rect needed{};
    Check(glimmerblur_region_needed(object_.get(), &whole, firstRow, &wanted, &needed));
    return needed;
  }

  void Render(const Frame& source, const Frame& destination) {
    Check(glimmerblur_render(object_.get(), &source, &destination, nullptr));
  }
  void Render(const Frame& source, const Frame& destination, const glimmerblur_rect& whole) {
    Check(glimmerblur_render(object_.get(), &source, &destination, &whole));
  }

  glimmerblur_report Report() const {
    glimmerblur_report report;
    glimmerblur_report_init(&report);
    Check(glimmerblur_get_report(object_.get(), &report));
    return report;
  }

 private:
  struct Destroy {
    void operator()(::glimmerblur* object) const { glimmerblur_destroy(object); }
  };

  void Check(glimmerblur_status status) const {
    if (status != GLIMMERBLUR_OK) {
      throw Error(status, glimmerblur_message(object_.get()));
    }
  }

  std::unique_ptr<std::function<bool(double)>> progress_;  // at one place, wherever this moves
  std::unique_ptr<::glimmerblur, Destroy> object_;
};

}  // namespace glimmer

#endif
