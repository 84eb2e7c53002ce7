// SPDX-License-Identifier: BSD-3-Clause
// How the inside of the library gives up: thrown where something is wrong, caught at the C face.
#pragma once

#include <stdexcept>
#include <string>

#include "doors/library/glimmerblur.h"

namespace lx {

class Refusal : public std::runtime_error {
 public:
  //   message  one sentence that names the thing, the value and what is allowed
  Refusal(glimmerblur_status status, const std::string& message)
      : std::runtime_error(message), status_(status) {}

  glimmerblur_status Status() const { return status_; }

 private:
  glimmerblur_status status_;
};

}  // namespace lx
