// SPDX-License-Identifier: BSD-3-Clause
// The object behind the C face: a look, an aperture and an engine with what it has loaded.
//
//   frame -> work picture -> engine -> work picture -> frame
//
// The work picture holds what one tile reads, in floats for the engine of our own. Where there is
// more than one tile, or more than one plane, results are kept beside the destination until all are
// there.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "doors/library/aperture.h"
#include "doors/library/frame_view.h"
#include "doors/library/glimmerblur.h"
#include "doors/library/pass_runner.h"
#include "doors/library/tiling.h"
#include "fftlib/backends/backend.h"
#include "imagelib/imagelib.h"

namespace lx {

// Members throw a Refusal, or std::bad_alloc.
class Defocus {
 public:
  explicit Defocus(const glimmerblur_options& options);
  Defocus(const Defocus&) = delete;
  Defocus& operator=(const Defocus&) = delete;

  void SetLook(const glimmerblur_look* look);
  void SetAperture(const glimmerblur_frame* picture, double centreX, double centreY, double inner,
                   double outer);
  void SetProgress(glimmerblur_progress progress, void* user) {
    runner_.SetProgress(progress, user);
  }
  glimmerblur_rect RegionNeeded(const glimmerblur_rect& whole, std::int32_t firstRow,
                                const glimmerblur_rect& wanted);
  void Render(const glimmerblur_frame* source, const glimmerblur_frame* destination,
              const glimmerblur_rect* whole);
  void Report(glimmerblur_report* report) const;

 private:
  struct Job;

  const ApertureMask& MaskFor(std::int32_t width, std::int32_t height);
  void Load(const ApertureMask& mask, const GridPlace& place);
  void Forget();  // what is loaded
  void RunTile(const Job& job, const Tile& tile, std::int32_t channel, const FrameView& to,
               bool isLast);
  void CheckCancel();

  glimmerblur_options options_;
  PassRunner runner_;
  std::unique_ptr<Backend> backend_;
  const Footprint* footprint_;

  std::optional<glimmerblur_look> look_;
  std::optional<AperturePicture> picture_;

  // The mask of the look, and of the picture's size where that matters.
  std::optional<ApertureMask> mask_;
  std::int32_t maskWidth_ = 0;
  std::int32_t maskHeight_ = 0;
  std::optional<GridPlace> loaded_;  // where the engine has that mask
  std::unique_ptr<ImageRec, ImageDeleter> work_;

  std::uint64_t replaced_ = 0;
  std::uint64_t bytes_ = 0;
  std::int32_t tiles_ = 0;
};

}  // namespace lx
