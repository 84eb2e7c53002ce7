// DefocusEngine: convolves frames with a point-spread function (PSF).
//
// Before the first run: load a PSF (BuildShapePsf, BuildImagePsf or LoadPsf), then give
// a frame of the PSF's size with SetSourceImage. Convolve then blurs it into a second
// image, as often as asked; whatever a run needs is allocated and planned by the first
// one and kept.
//
//   N x N grid, row stride N      The padded size N is a power of two, the same for
//   +--------------------------+  both sides: the next one above the longer of
//   |      margin repeats      |  width + 2 margin and height + 2 margin. The frame's
//   |    +---------------+     |  pixel (x, y) stands in row offsetY + y, column
//   |    | frame, at     |     |  offsetX + x. A spectrum has N rows of N/2 + 1
//   |    | offsetX, Y    |     |  complex numbers.
//   |    +---------------+     |
//   +--------------------------+
//
// That is the mode of FFTW. In the kernel modes the two sides are padded apart, and grids hold
// complex samples, which become their own spectrum in place.
//
// Every failure is a false result and a code in status; nothing is logged, nothing is
// thrown. One thread at a time per engine; different engines may work on different
// threads. Images that are handed over are borrowed and must outlive the run.
#pragma once

#include <atomic>
#include <cstdint>

#include "imagelib/imagelib.h"

struct fftw_plan_s;  // a plan of the transform library

namespace lx {

class DefocusEngine;

// Handles the rows (or columns) first to last, both inclusive, of a pass over an image.
// A range with first above last is empty.
using PassFunction = void (*)(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// Runs a pass over ranges that cover 0 to count - 1 exactly once, and returns when all
// have finished.
using ParallelForFunction = void (*)(void* context, PassFunction pass, std::int32_t count,
                                     DefocusEngine* engine);

// Asked at the start of each row, from every thread that works on a pass; non-zero ends
// the pass early, without an error.
using CancelQueryFunction = std::int32_t (*)(void* context);

// Values of engineMode. The kernel modes transform by fftkernels, in complex grids whose sides
// differ where the frame's do. Mode 3 has no back-end: its loads and runs answer false and leave
// status alone. Any other value counts as kModeKernelF32.
inline constexpr std::int32_t kModeKernelF32 = 1;
inline constexpr std::int32_t kModeKernelF64 = 2;
inline constexpr std::int32_t kModeNone = 3;
inline constexpr std::int32_t kModeFftw = 4;

// Values of status.
inline constexpr std::int32_t kStatusOk = 0;
inline constexpr std::int32_t kStatusSizeRange = 1;  // a padded or block size outside 2 to
                                                     // 8192, or an image without samples
inline constexpr std::int32_t kStatusNoMemory = 2;
inline constexpr std::int32_t kStatusSourceSize = 3;   // source not of the PSF's size
inline constexpr std::int32_t kStatusNotLoaded = 4;    // run without PSF or source
inline constexpr std::int32_t kStatusDestination = 5;  // destination unlike the source
inline constexpr std::int32_t kStatusFloatImage = 6;   // float image not accepted here
inline constexpr std::int32_t kStatusChannels = 7;     // too few channels or mask bits
inline constexpr std::int32_t kStatusEdgeMode = 8;     // SetEdgeMode knows 1 and 2
inline constexpr std::int32_t kStatusNoPlan = 9;
inline constexpr std::int32_t kStatusNoThreads = 10;  // transform threads did not start

// Bits of Convolve's channel mask.
inline constexpr std::uint32_t kBitLuma = 1;
inline constexpr std::uint32_t kBitCr = 2;
inline constexpr std::uint32_t kBitCb = 4;
inline constexpr std::uint32_t kBitAlpha = 8;

inline constexpr std::int32_t kEdgeZero = 1;       // pads with zero
inline constexpr std::int32_t kEdgeReplicate = 2;  // repeats the frame's edge

inline constexpr std::int32_t kLargestPaddedSize = 8192;

// 1 for n below 2, else the smallest power of two not below n.
//   exponent  receives its exponent; may be null
std::int64_t NextPowerOfTwo(std::int64_t n, std::int32_t* exponent = nullptr);

// The side of a grid that holds a side of a frame with a margin on both ends; a margin below 0
// counts as 0.
std::int64_t PaddedSide(std::int32_t side, std::int32_t margin);

// The fields are open for tests and measurements; whoever renders uses the operations.
class DefocusEngine {
 public:
  DefocusEngine();
  explicit DefocusEngine(std::int32_t mode);  // 5 counts as 4
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
  // engines, in the directory of settings. False where it cannot be opened, is none of the
  // library's, or was not written whole; nothing else comes of that. Under the planner's lock.
  bool ImportWisdom();
  bool ExportWisdom();

  // The separable filter: a kernel is mirrored about its first value, its sum made 1, and lines
  // of an image are multiplied with it as real transforms of fftkernels.
  // Intended: the mirror image lies one place short of where a circle would have it; a sum of 0
  // or below multiplies the kernel by itself; and since the real transforms take numbers in
  // another order than lines have, the result is no plain convolution.

  // Takes a copy of the right half of a kernel. False, without a kernel then, for a count below 1,
  // which leaves status alone, and where memory has run out.
  bool SetSeparableKernel(const float* kernel, std::int32_t count);

  // Makes a kernel and sets it. False for a type that is none, for a radius that is no number or
  // gives more than 8192 values, none of which touches status, and where memory has run out.
  //   type       1 box and 2 triangle, which end at the radius r, with r + 1 values; 3 Gaussian,
  //              whose deviation is r / 3; 4 cubic, 5 cubic B-spline, 6 sinc with a cosine window
  //              and 9 sinc with a sinc window, which end at 2 r. All but 1 and 2 have 2 r + 1
  //              values, r being rounded up
  //   radius     r, pixels; at least 0.01, of a box 1
  //   parameter  of type 4, its slope at 1; 0 for -0.75
  //   spare      is not read
  bool MakeFilterKernel(std::int32_t type, float radius, float parameter, float spare);

  // Takes the image to be filtered, for the kernel that is set: a line and twice the kernel's
  // length may come to 8192 samples. Borrowed. False, without an image then, on failure.
  // Intended: every call makes a clone to work in, and loses that of the call before.
  bool PrepareSeparable(const ImageRec* image);

  // Filters the image's channels. Whole numbers are cut, not rounded, and saturate.
  //   dest         of the image's size and sample type; may be the image itself
  //   channelMask  bit n selects channel n
  //   direction    bit 0 along rows, bit 1 along columns; none of them does nothing
  bool FilterSeparable(ImageRec* dest, std::uint32_t channelMask, std::uint32_t direction);

  // Transforms a square block of real numbers by fftkernels, in its order of frequencies, and
  // back without scaling: size * size times the block. False for a size that is no power of two
  // from 2 to 8192, and where memory has run out.
  //   input, output  size * size numbers
  //   spectrum       size * size complex ones; InverseKernel2D destroys them
  // Intended: either changes the padded size, so that a run at another size needs a new load.
  bool ForwardKernel2D(std::int32_t size, const float* input, float (*spectrum)[2]);
  bool InverseKernel2D(std::int32_t size, float (*spectrum)[2], float* output);

  // The signed frequencies of a place of the last ForwardKernel2D's spectrum. False, with nothing
  // stored, for a place outside and before there is one.
  bool LookUpFrequency(std::int32_t row, std::int32_t column, float* rowFrequency,
                       float* columnFrequency) const;

  std::int32_t GetStatus() const { return status.load(std::memory_order_relaxed); }

  bool SetEdgeMode(std::int32_t mode);  // kEdgeZero or kEdgeReplicate, else false
  void SetPsfSoftness(float radius);    // blur of every mask in pixels; negative as 0
  bool SetGamma(float value);           // of ConvolveChannels, kept in 0.2..5; true
  void SetOutputGain(float value);      // kept in 0.2..5
  void SetOutputOffset(float value);    // kept in -5..5

  // Scales the buffer to sum 1 and rotates it left by width / 2 and up by height / 2.
  // 0, or kStatusNoMemory with the buffer as it was.
  static std::int32_t NormaliseAndShiftPsf(double* buffer, std::int32_t width, std::int32_t height);

  using Plan = fftw_plan_s*;
  using Complex = double[2];

  const ImageRec* psfImage = nullptr;     // mask last loaded; only ever compared with null
  const ImageRec* sourceImage = nullptr;  // borrowed
  void* kernelPsf = nullptr;              // the kernel modes' grids of complex samples
  // After a run: alpha's result, or zeros; the three below have the planes in the frame's
  // rectangle.
  void* kernelWork = nullptr;
  void* kernelLuma = nullptr;
  void* kernelCr = nullptr;
  void* kernelCb = nullptr;
  Plan psfPlan = nullptr;      // psfSpatial to psfSpectrum
  Plan forwardPlan = nullptr;  // workSpatial to workSpectrum
  Plan inversePlan = nullptr;  // workSpectrum to workSpatial
  double* psfSpatial = nullptr;
  Complex* psfSpectrum = nullptr;
  double* workSpatial = nullptr;  // after a run: alpha's result
  Complex* workSpectrum = nullptr;
  double* lumaResult = nullptr;  // N * N times the planes' values, in the frame's rectangle
  double* crResult = nullptr;
  double* cbResult = nullptr;
  std::uint32_t threadsReady = 0;  // 0: the transform library has no threads
  std::uint32_t threadCount = 1;   // given to the planner
  std::int32_t useWisdom = 0;      // plans are measured
  std::int32_t wisdomLoaded = 0;
  bool followSourceSize = false;
  std::int32_t frameWidth = -1;  // size of the mask last loaded
  std::int32_t frameHeight = -1;
  std::int32_t paddedWidth = -1;
  std::int32_t paddedHeight = -1;
  std::int32_t offsetX = -1;
  std::int32_t offsetY = -1;
  std::int32_t margin = -1;
  void* passTarget = nullptr;  // parameters of the pass in work
  bool passIsPsf = false;
  const ImageRec* passSource = nullptr;
  std::int32_t passEdgeMode = 0;
  float emphasis = 0.0F;
  bool emphasisAlpha = false;
  float gamma = 1.0F;
  bool gammaActive = false;
  float outputGain = 1.0F;
  float outputOffset = 0.0F;
  float psfSoftness = 0.0F;
  const ImageRec* separableSource = nullptr;  // the separable filter's
  ImageRec* separableWork = nullptr;
  std::int32_t separableWidth = -1;
  std::int32_t separableHeight = -1;
  std::int32_t separablePaddedWidth = 0;
  std::int32_t separablePaddedHeight = 0;
  float* separableKernel = nullptr;
  std::int32_t separableKernelLength = -1;
  std::int32_t separableSpare = -1;
  const ImageRec* separableRowSource = nullptr;
  const ImageRec* separableColumnSource = nullptr;
  ImageRec* passDest = nullptr;
  std::uint32_t passChannelBit = 0;
  std::int32_t passChannel = 0;  // the stored channel in work of ConvolveChannels
  void* passKept = nullptr;      // grid that keeps the plane before the one in work
  std::int32_t edgeMode = kEdgeReplicate;
  ImageRec* psfMask = nullptr;          // owned; the mask that the builders draw
  std::atomic<std::int32_t> status{0};  // last error, until a pass clears it
  void* callbackContext = nullptr;
  ParallelForFunction parallelFor = nullptr;
  CancelQueryFunction cancelQuery = nullptr;
  float aspectX = 1.0F;
  float aspectY = 1.0F;
  std::int32_t* frequencyTable = nullptr;
  std::int32_t frequencyTableSize = 0;
  std::int32_t engineMode = kModeFftw;

  // Runs a pass over the indices 0 to count - 1.
  void RunRows(PassFunction pass, std::int32_t count);

  // For passes: whether the owner wants no more rows.
  bool CancelRequested() const;

 private:
  bool LoadPsfFftw(const ImageRec* mask, std::int32_t newMargin);
  bool ConvolveFftw(ImageRec* dest, std::uint32_t channelMask);
  bool ConvolveChannelsFftw(ImageRec* dest, std::uint32_t channelMask);
  bool Fail(std::int32_t code);  // stores the code; false
  bool CheckRun(const ImageRec* dest);

  ImageRec* PrepareMask(std::int32_t width, std::int32_t height);  // cleared; null on failure

  // Grids and plans, made where they are missing. False with a code in status.
  bool PreparePsfGrids();
  bool PrepareWorkGrids(bool clearNew);
  bool PrepareResult(double** result);
  template <class Create>
  bool MakePlan(Plan* plan, Create create);
  void FreeGrids();
  void FreeKernelGrids();

  // The beginning of every load: mask and margin as they are given.
  bool TakeMask(const ImageRec* mask, std::int32_t newMargin);

  // Takes a padded size, with which grids and plans of another size go.
  void SetGrid(std::int32_t width, std::int32_t height);

  // The modes of the fixed-size kernels. T is what their grids are made of: float, double.
  template <class T>
  bool LoadPsfKernel(const ImageRec* mask, std::int32_t newMargin);
  template <class T>
  bool ConvolveKernel(ImageRec* dest, std::uint32_t channelMask);
  template <class T>
  bool ConvolveChannelsKernel(ImageRec* dest, std::uint32_t channelMask);
  template <class T>
  bool PrepareKernelGrid(void** grid, bool clear);
  template <class T>
  bool TransformKernelPlane(PassFunction inputPass);
  template <class T>
  void FinishKernelPlane(void* result, bool isLast);
  bool CheckKernelRun(const ImageRec* dest);
  bool CheckDestination(const ImageRec* dest);
  bool FitsGrid() const;
  bool CheckBlockSize(std::int32_t size);
  bool PrepareFrequencyTable(std::int32_t size);

  // The pass fields of one plane of the source on its way to dest.
  void SetPlaneParameters(ImageRec* dest, std::uint32_t channelBit);

  // One plane from input pass to inverse transform, which leaves it in workSpatial.
  void TransformPlane(PassFunction inputPass);

  // The sides for which the grids and plans were made. Runs need them to equal the padded
  // size, which other operations may have moved on.
  std::int32_t gridWidth_ = -1;
  std::int32_t gridHeight_ = -1;
};

}  // namespace lx
