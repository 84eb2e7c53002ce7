// SPDX-License-Identifier: BSD-3-Clause
// DefocusEngine: convolves frames with a point-spread function (PSF).
//
// Before the first run: load a PSF (BuildShapePsf, BuildImagePsf or LoadPsf), then give
// a frame of the PSF's size with SetSourceImage. Convolve then blurs it into a second
// image, as often as asked; whatever a run needs is allocated and planned by the first
// one and kept.
//
// How it transforms is its back-end's affair. The frame stands in the middle of a padded grid, so
// that what wraps around does not reach it: GridPlace draws it.
//
// Every failure is a false result and a code in status; nothing is logged, nothing is
// thrown. One thread at a time per engine; different engines may work on different
// threads. Images that are handed over are borrowed and must outlive the run.
#pragma once

#include <cstdint>
#include <memory>

#include "fftlib/backends/backend.h"
#include "fftlib/core/grid.h"
#include "fftlib/core/rows.h"
#include "fftlib/core/run.h"     // channel bits, edge modes
#include "fftlib/core/status.h"  // the codes of GetStatus
#include "fftlib/lines/block_transforms.h"
#include "fftlib/lines/separable_filter.h"
#include "imagelib/imagelib.h"

namespace lx {

class DefocusEngine;

// Handles the rows (or columns) first to last, both inclusive. A range with first above last is
// empty.
using PassFunction = void (*)(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// Runs a pass over ranges that cover 0 to count - 1 exactly once, and returns when all
// have finished.
using ParallelForFunction = void (*)(void* context, PassFunction pass, std::int32_t count,
                                     DefocusEngine* engine);

// Asked at the start of each row, from every thread that works on a pass; non-zero ends
// the pass early, without an error.
using CancelQueryFunction = std::int32_t (*)(void* context);

// Integers that name back-ends: single, double, none, exact. Without one, loads and runs answer
// false and leave status alone. Any other value counts as kModeKernelF32. A back-end that has no
// integer is given to the constructor.
inline constexpr std::int32_t kModeKernelF32 = 1;
inline constexpr std::int32_t kModeKernelF64 = 2;
inline constexpr std::int32_t kModeNone = 3;
inline constexpr std::int32_t kModeFftw = 4;

class DefocusEngine {
 public:
  // Whatever the mode, the transform library's threads are started with the first of these engines
  // and ended with the last, and wisdom is kept where it is asked for. Where the threads do not
  // start, status says so.
  DefocusEngine();                            // kModeFftw
  explicit DefocusEngine(std::int32_t mode);  // 5 counts as 4

  // Takes a back-end, of which null counts as kModeNone.
  explicit DefocusEngine(std::unique_ptr<Backend> backend);
  virtual ~DefocusEngine();
  DefocusEngine(const DefocusEngine&) = delete;
  DefocusEngine& operator=(const DefocusEngine&) = delete;

  // How passes run: the context is the first argument of both callbacks. Without a
  // function, or with a null context, passes run on the calling thread. True.
  bool SetParallelFor(void* context, ParallelForFunction function);

  // Intended: the context is ignored; polls get the one given to SetParallelFor. True.
  bool SetCancelQuery(void* context, CancelQueryFunction function);

  // Divisors of an outline's x and y extent. True.
  bool SetPixelAspect(float x, float y);

  // Draws an outline into the mask and loads it. Failure shows in status.
  //   width, height     the frame's size in pixels
  //   shape             1 ellipse, 2 regular polygon, 3 rectangle from the centre
  //                     outwards, 4 rectangle moved towards the centre; others: empty
  //   radiusX, radiusY  pixels; below 1 as 1
  //   rotation          degrees
  //   sides             of a polygon, 3 to 50; values outside are brought inside
  void BuildShapePsf(std::int32_t width, std::int32_t height, std::int32_t shape, float radiusX,
                     float radiusY, float rotation, std::int32_t sides);

  // Cuts a soft disc out of a picture and loads it. Failure shows in status.
  //   image             any integer sample type; only its first channel counts. The frame
  //                     must have its size. May be freed when the call returns
  //   centreX, centreY  the disc's centre, in pixels of the picture; may lie outside
  //   innerRadius       pixels; full weight up to here
  //   falloff           pixels from there to weight 0; below 1 as 1
  void BuildImagePsf(const ImageRec* image, std::int32_t centreX, std::int32_t centreY,
                     float innerRadius, float falloff);

  // Takes a mask of the frame's size as the PSF: softens it, normalises its sum to 1,
  // moves its middle to sample (0, 0) and keeps its spectrum. False on failure.
  //   mask    8-bit, one channel; softened in place. Borrowed until the next load. The kernel
  //           modes take every sample type, and the first of several channels
  //   margin  pixels by which the frame is padded on each side; below 0 as 0
  // Where memory has run out the mode of FFTW keeps the mask as its PSF, the kernel modes have
  // none.
  // Intended: a load at an unchanged padded size adds the mask to what the earlier load
  // left in the grid outside the frame's rectangle; in the kernel modes that is its spectrum.
  bool LoadPsf(ImageRec* mask, std::int32_t margin);

  // The frame to blur. False, with no source then, unless it has the PSF's size.
  bool SetSourceImage(const ImageRec* image);

  void SetEmphasis(float value);        // kept in 0..500; up to 1 there is no emphasis
  bool SetEmphasisAlpha(bool enabled);  // whether alpha is emphasised too; gives it back

  // Blurs the source into dest, as luma, two chroma planes and alpha.
  //   dest         of the source's size and sample type; may be the source itself
  //   channelMask  bits 0 to 2 must be set; bit 3 writes alpha, if both images have it
  // False on failure, with dest as it was. The kernel modes refuse float images.
  // Intended: in the kernel modes a full white of 32 bits becomes 0, and with margins of zero
  // what a plane left in them goes into the next one: luma's into Cr, alpha's into the next
  // frame.
  bool Convolve(ImageRec* dest, std::uint32_t channelMask);

  // Blurs stored channels one by one, without colour transform.
  //   channelMask  bit n selects channel n
  // False on failure; channels before the failing one are written. The kernel modes have no
  // gamma, gain and offset.
  bool ConvolveChannels(ImageRec* dest, std::uint32_t channelMask);

  // Reads or writes what measuring plans has taught the transform library: one file for all
  // engines, in the directory of settings. False where that fails; nothing else comes of it.
  // Under the planner's lock.
  bool ImportWisdom();
  bool ExportWisdom();

  // Lines of an image times a filter's weights. What the arguments mean stands with
  // SeparableFilter. False on failure.
  bool SetSeparableKernel(const float* weights, std::int32_t count);
  bool MakeFilterKernel(std::int32_t type, float radius, float parameter, float spare);
  bool PrepareSeparable(const ImageRec* image);
  bool FilterSeparable(ImageRec* dest, std::uint32_t channelMask, std::uint32_t direction);

  // Square blocks of real numbers through the fixed-size transforms, as BlockTransforms tells.
  // False for a size that is no power of two from 2 to 8192, and where memory has run out.
  // Intended: either changes the padded size, so that a run at another size needs a new load.
  bool ForwardKernel2D(std::int32_t size, const float* input, float (*spectrum)[2]);
  bool InverseKernel2D(std::int32_t size, float (*spectrum)[2], float* output);
  bool LookUpFrequency(std::int32_t row, std::int32_t column, float* rowFrequency,
                       float* columnFrequency) const;

  std::int32_t GetStatus() const { return rows_.Status(); }

  bool SetEdgeMode(std::int32_t mode);  // kEdgeZero or kEdgeReplicate, else false
  void SetPsfSoftness(float radius);    // blur of every mask in pixels; negative as 0
  bool SetGamma(float value);           // of ConvolveChannels, kept in 0.2..5; true
  void SetOutputGain(float value);      // kept in 0.2..5
  void SetOutputOffset(float value);    // kept in -5..5

 private:
  friend class EngineInside;  // through which tests look

  static void DivideRows(void* owner, std::int32_t count);
  static void RunRange(DefocusEngine* engine, std::int32_t first, std::int32_t last);

  bool Fail(std::int32_t code);       // stores the code; false
  bool Finish(std::int32_t code);     // true for kStatusOk; stores any other but kRefused
  ImageRec* PrepareMask(Size frame);  // cleared; null on failure
  bool CheckRun(const ImageRec* dest);
  bool HasPsf() const;
  bool CheckBlockSize(std::int32_t size);
  TransformLibrary* Library() const;

  // From the last to go to the first.
  std::unique_ptr<TransformLibrary> library_;  // where the back-end has none
  BlockTransforms blocks_;
  std::unique_ptr<ImageRec, ImageDeleter> psfMask_;  // what the builders draw
  SeparableFilter separable_;
  std::unique_ptr<Backend> backend_;

  Rows rows_;
  ParallelForFunction parallelFor_ = nullptr;

  const ImageRec* psfImage_ = nullptr;     // mask last loaded; only ever compared with null
  const ImageRec* sourceImage_ = nullptr;  // borrowed
  GridPlace place_;                        // of the mask last loaded
  Size loadedGrid_;  // that the back-end's buffers are for; blocks move place_.grid on
  std::int32_t margin_ = -1;

  Look look_;
  Gamma gamma_;
  float psfSoftness_ = 0.0F;
  float aspectX_ = 1.0F;
  float aspectY_ = 1.0F;
};

}  // namespace lx
