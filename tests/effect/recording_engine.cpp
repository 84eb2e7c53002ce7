// SPDX-License-Identifier: BSD-3-Clause
#include "tests/effect/recording_engine.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "fftlib/fftlib.h"

namespace lx_test {

EngineRecord& Record() {
  static EngineRecord record;
  return record;
}

namespace {

template <class... Arguments>
void Add(const std::string& name, const Arguments&... arguments) {
  std::ostringstream out;
  out.precision(9);
  out << name;
  if constexpr (sizeof...(arguments) > 0) {
    const char* separator = "(";
    ((out << separator << arguments, separator = ","), ...);
    out << ")";
  }
  Record().calls.push_back(out.str());
}

}  // namespace
}  // namespace lx_test

namespace lx {

using lx_test::Add;
using lx_test::Record;

DefocusEngine::DefocusEngine(std::unique_ptr<Backend> backend)
    : backend_(std::move(backend)), rows_(this, DivideRows) {
  ++Record().alive;
}

DefocusEngine::~DefocusEngine() { --Record().alive; }

bool DefocusEngine::SetParallelFor(void* context, ParallelForFunction function) {
  rows_.SetContext(context);
  parallelFor_ = function;
  Add("SetParallelFor");
  return true;
}

bool DefocusEngine::SetCancelQuery(void* /*context*/, CancelQueryFunction function) {
  rows_.SetCancelQuery(function);
  Add("SetCancelQuery");
  return true;
}

bool DefocusEngine::SetPixelAspect(float x, float y) {
  Add("SetPixelAspect", x, y);
  return true;
}

void DefocusEngine::BuildShapePsf(std::int32_t width, std::int32_t height, std::int32_t shape,
                                  float radiusX, float radiusY, float rotation,
                                  std::int32_t sides) {
  Add("BuildShapePsf", width, height, shape, radiusX, radiusY, rotation, sides);
}

void DefocusEngine::BuildImagePsf(const ImageRec* image, std::int32_t centreX, std::int32_t centreY,
                                  float innerRadius, float falloff) {
  Record().psf = image;
  Add("BuildImagePsf", image->width, image->height, centreX, centreY, innerRadius, falloff);
}

bool DefocusEngine::SetSourceImage(const ImageRec* image) {
  Record().source = image;
  Add("SetSourceImage", image->channels, image->sampleType);
  sourceImage_ = image;
  return true;
}

void DefocusEngine::SetEmphasis(float value) { Add("SetEmphasis", value); }

bool DefocusEngine::SetEmphasisAlpha(bool enabled) {
  Add("SetEmphasisAlpha", enabled);
  return enabled;
}

// A picture that no other step makes: every sample 2000.
bool DefocusEngine::Convolve(ImageRec* dest, std::uint32_t channelMask) {
  Record().destination = dest;
  Add("Convolve", channelMask);
  if (Record().runDoesNothing) {
    return false;
  }
  std::fill_n(static_cast<std::uint16_t*>(dest->data), dest->width * dest->height * 4,
              std::uint16_t{2000});
  return true;
}

// No pass is ever run.
void DefocusEngine::DivideRows(void* /*owner*/, std::int32_t /*count*/) {}

}  // namespace lx
