// SPDX-License-Identifier: BSD-3-Clause
// FloatRenderer: pictures of floats through the effect's library, one after another.
//
// What the module does with 16 bits, the library does with floats, by the same values of the store.
#pragma once

#include <memory>
#include <vector>

#include "doors/library/glimmerblur.h"
#include "host/module/frame_renderer.h"
#include "host/pictures/picture.h"

namespace glimmerhost {

class FloatRenderer {
 public:
  //   centred  apertures stand exactly on their pixel; else where the module has them
  explicit FloatRenderer(bool centred) : centred_(centred) {}

  // What the effect makes of the picture, as many samples as it has. Throws Failure.
  //   input  its source is not looked at; its spread is there if the aperture is a picture
  std::vector<float> Render(const FrameInput& input, const Picture& picture);

 private:
  struct Destroy {
    void operator()(glimmerblur* object) const { glimmerblur_destroy(object); }
  };

  void Make();
  void Check(glimmerblur_status status) const;
  void SetAperture(const FrameInput& input);

  bool centred_;
  std::unique_ptr<glimmerblur, Destroy> object_;  // made for the first picture
};

}  // namespace glimmerhost
