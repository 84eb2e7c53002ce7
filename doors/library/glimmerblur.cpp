// SPDX-License-Identifier: BSD-3-Clause
// The C face: checks what C can't, and turns what is thrown into statuses.
#include "doors/library/glimmerblur.h"

#include <array>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <string>

#include "doors/library/defocus.h"
#include "doors/library/refusal.h"

// A text of its own, so that there is a sentence where memory has run out.
struct glimmerblur {
  std::array<char, 512> message{};
  std::optional<lx::Defocus> defocus;
};

namespace {

constexpr std::array<const char*, 11> kTexts = {
    "success",
    "an argument is null, or a record of unknown size or version",
    "a member of the look is outside its range",
    "a frame's sizes or layout are wrong, or frames don't go together",
    "no look has been set",
    "the shape is a picture, and none was given",
    "frame and aperture are too large together",
    "memory has run out, or its limit is too low",
    "the progress function cancelled the render",
    "this build of the library has no such engine",
    "something failed that should not",
};

void Say(glimmerblur* object, const char* text) {
  std::snprintf(object->message.data(), object->message.size(), "%s", text);
}

// Calls the function on the object, and answers for what it throws.
template <class Function>
glimmerblur_status Guard(glimmerblur* object, Function function) noexcept {
  if (object == nullptr) {
    return GLIMMERBLUR_INVALID_ARGUMENT;
  }
  object->message[0] = '\0';
  try {
    function();
    return GLIMMERBLUR_OK;
  } catch (const lx::Refusal& refusal) {
    Say(object, refusal.what());
    return refusal.Status();
  } catch (const std::bad_alloc&) {
    Say(object, "Memory has run out.");
    return GLIMMERBLUR_NO_MEMORY;
  } catch (const std::exception& failure) {
    Say(object, failure.what());
    return GLIMMERBLUR_FAILED;
  } catch (...) {
    Say(object, "Something failed that should not.");
    return GLIMMERBLUR_FAILED;
  }
}

template <class Record>
void Init(Record* record) {
  *record = {};
  record->size = sizeof *record;
  record->version = GLIMMERBLUR_ABI;
}

void CheckOptions(const glimmerblur_options& options) {
  constexpr std::int32_t kMostThreads = 64;
  if (options.size != sizeof options || options.version != GLIMMERBLUR_ABI) {
    throw lx::Refusal(GLIMMERBLUR_INVALID_ARGUMENT, "The options are of another version.");
  }
  if (options.threads < 0 || options.threads > kMostThreads) {
    throw lx::Refusal(GLIMMERBLUR_INVALID_ARGUMENT, "The options' threads are outside 0 to 64.");
  }
}

}  // namespace

extern "C" {

const char* glimmerblur_status_text(int32_t status) {
  const bool isKnown = status >= 0 && status <= GLIMMERBLUR_FAILED;
  return isKnown ? kTexts[static_cast<std::size_t>(status)] : "an unknown status";
}

const char* glimmerblur_version(void) { return GLIMMERBLUR_VERSION_TEXT; }

void glimmerblur_options_init(glimmerblur_options* options) { Init(options); }

glimmerblur_status glimmerblur_create(const glimmerblur_options* options, glimmerblur** made) {
  if (made == nullptr) {
    return GLIMMERBLUR_INVALID_ARGUMENT;
  }
  *made = nullptr;
  auto* object = new (std::nothrow) glimmerblur;
  if (object == nullptr) {
    return GLIMMERBLUR_NO_MEMORY;
  }
  const glimmerblur_status status = Guard(object, [&] {
    glimmerblur_options own;
    glimmerblur_options_init(&own);
    if (options != nullptr) {
      CheckOptions(*options);
      own = *options;
    }
    object->defocus.emplace(own);
  });
  if (status != GLIMMERBLUR_OK) {
    delete object;
    return status;
  }
  *made = object;
  return GLIMMERBLUR_OK;
}

void glimmerblur_destroy(glimmerblur* object) { delete object; }

const char* glimmerblur_message(const glimmerblur* object) {
  return object != nullptr ? object->message.data() : "";
}

void glimmerblur_look_init(glimmerblur_look* look) {
  Init(look);
  look->shape = GLIMMERBLUR_CIRCLE;
  look->sides = 6;
  look->radius_x = 10.0;
  look->radius_y = 10.0;
  look->pixel_aspect = 1.0;
  look->emphasis = 1.0;
  look->blur_alpha = 1;
  look->centred = 1;
}

glimmerblur_status glimmerblur_set_look(glimmerblur* object, const glimmerblur_look* look) {
  return Guard(object, [&] { object->defocus->SetLook(look); });
}

void glimmerblur_frame_init(glimmerblur_frame* frame) {
  Init(frame);
  frame->sample = GLIMMERBLUR_FLOAT;
  frame->channels = 4;
}

glimmerblur_status glimmerblur_region_needed(glimmerblur* object, const glimmerblur_rect* whole,
                                             int32_t first_row, const glimmerblur_rect* wanted,
                                             glimmerblur_rect* needed) {
  return Guard(object, [&] {
    if (whole == nullptr || wanted == nullptr || needed == nullptr) {
      throw lx::Refusal(GLIMMERBLUR_INVALID_ARGUMENT, "A rectangle is null.");
    }
    *needed = object->defocus->RegionNeeded(*whole, first_row, *wanted);
  });
}

glimmerblur_status glimmerblur_set_aperture(glimmerblur* object, const glimmerblur_frame* picture,
                                            double centre_x, double centre_y, double inner,
                                            double outer) {
  return Guard(object,
               [&] { object->defocus->SetAperture(picture, centre_x, centre_y, inner, outer); });
}

void glimmerblur_set_progress(glimmerblur* object, glimmerblur_progress progress, void* user) {
  (void)Guard(object, [&] { object->defocus->SetProgress(progress, user); });
}

glimmerblur_status glimmerblur_render(glimmerblur* object, const glimmerblur_frame* source,
                                      const glimmerblur_frame* destination,
                                      const glimmerblur_rect* whole) {
  return Guard(object, [&] { object->defocus->Render(source, destination, whole); });
}

void glimmerblur_report_init(glimmerblur_report* report) { Init(report); }

glimmerblur_status glimmerblur_get_report(const glimmerblur* object, glimmerblur_report* report) {
  if (object == nullptr || report == nullptr || report->size != sizeof *report ||
      report->version != GLIMMERBLUR_ABI) {
    return GLIMMERBLUR_INVALID_ARGUMENT;
  }
  object->defocus->Report(report);
  return GLIMMERBLUR_OK;
}

}  // extern "C"
