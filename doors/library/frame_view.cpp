// SPDX-License-Identifier: BSD-3-Clause
#include "doors/library/frame_view.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "doors/library/refusal.h"
#include "doors/library/work_samples.h"

namespace lx {
namespace {

constexpr std::int32_t kLongestSide = 1 << 20;
constexpr std::int32_t kFarthest = 1 << 28;
constexpr std::int32_t kMostChannels = 1 << 12;
constexpr std::int64_t kLongestStride = std::int64_t{1} << 40;

[[noreturn]] void Refuse(const char* name, const std::string& what) {
  throw Refusal(GLIMMERBLUR_INVALID_FRAME, "The " + std::string(name) + ' ' + what);
}

void CheckStride(std::int64_t stride, const char* name, const char* which) {
  if (stride < -kLongestStride || stride > kLongestStride) {
    Refuse(name, "has a " + std::string(which) + "_stride of " + std::to_string(stride) +
                     "; it must be within 2^40 bytes.");
  }
}

// Calls function with a sample of the frame's type, as the type to read it by.
template <class Function>
void OnSampleType(std::int32_t sample, Function function) {
  switch (sample) {
    case GLIMMERBLUR_U8:
      function(std::uint8_t{});
      break;
    case GLIMMERBLUR_U16:
      function(std::uint16_t{});
      break;
    default:
      function(float{});
      break;
  }
}

// Callers may have samples at any address.
template <class Sample>
Sample Load(const unsigned char* from) {
  Sample sample;
  std::memcpy(&sample, from, sizeof sample);
  return sample;
}

template <class Sample>
void Store(Sample sample, unsigned char* to) {
  std::memcpy(to, &sample, sizeof sample);
}

template <class Sample>
float LoadUnit(const unsigned char* from) {
  return ToUnit(Load<Sample>(from));
}

template <class Work>
Work* WorkRow(const ImageRec& work, std::int32_t row) {
  return static_cast<Work*>(work.data) + std::ptrdiff_t{row} * work.width * work.channels;
}

// One pixel of the frame to the work picture's samples.
template <class Sample, class Work>
void ReadPixel(const FrameView& frame, const unsigned char* from, std::int32_t count, Work* to) {
  if (!frame.isStraight) {
    for (std::int32_t c = 0; c < count; ++c) {
      to[c] = ToWork<Work>(LoadUnit<Sample>(from + c * frame.channelStride));
    }
    return;
  }
  const float alpha = LoadUnit<Sample>(from + 3 * frame.channelStride);
  for (std::int32_t c = 0; c < 3; ++c) {
    to[c] = ToWork<Work>(LoadUnit<Sample>(from + c * frame.channelStride) * alpha);
  }
  to[3] = ToWork<Work>(alpha);
}

template <class Sample, class Work>
void Read(const FrameView& frame, const RowReading& reading, std::int32_t x, std::int32_t y,
          const ImageRec& work, Work* to) {
  const std::int32_t count = work.channels;
  const std::ptrdiff_t first = frame.isRgba ? 0 : reading.channel * frame.channelStride;
  const std::int32_t end = x + work.width;
  const Box& held = reading.held;
  const bool isOutside = y < held.y || y >= held.Top();
  if (isOutside && !reading.repeats) {
    std::fill_n(to, std::ptrdiff_t{work.width} * count, Work{});
    return;
  }
  const std::int32_t row = std::clamp(y, held.y, held.Top() - 1);
  const std::int32_t begin = std::clamp(held.x, x, end);
  const std::int32_t behind = std::clamp(held.Right(), x, end);
  const auto at = [&](std::int32_t column) { return to + std::ptrdiff_t{column - x} * count; };
  const auto fill = [&](std::int32_t from, std::int32_t until, std::int32_t column) {
    if (from >= until) {
      return;
    }
    if (!reading.repeats) {
      std::fill(at(from), at(until), Work{});
      return;
    }
    for (std::int32_t i = from; i < until; ++i) {
      ReadPixel<Sample>(frame, frame.At(column, row) + first, count, at(i));
    }
  };
  fill(x, begin, held.x);
  const unsigned char* from = begin < behind ? frame.At(begin, row) + first : nullptr;
  for (std::int32_t i = begin; i < behind; ++i, from += frame.pixelStride) {
    ReadPixel<Sample>(frame, from, count, at(i));
  }
  fill(behind, end, held.Right() - 1);
}

template <class Sample, class Work>
void Write(const Work* from, std::int32_t count, std::int32_t width, std::ptrdiff_t first,
           const FrameView& frame, unsigned char* to) {
  // Below that colours are rounding.
  constexpr float kLeastAlpha = 0x1p-24F;
  to += first;
  for (std::int32_t x = 0; x < width; ++x, from += count, to += frame.pixelStride) {
    float scale = 1.0F;
    if (frame.isStraight) {
      const float alpha = FromWork(from[3]);
      scale = alpha < kLeastAlpha ? 0.0F : 1.0F / alpha;
    }
    for (std::int32_t c = 0; c < count; ++c) {
      const float value = FromWork(from[c]);
      Store(FromUnit<Sample>(c == 3 || scale == 1.0F ? value : value * scale),
            to + c * frame.channelStride);
    }
  }
}

}  // namespace

void CheckRect(const glimmerblur_rect& rect, const char* name) {
  if (rect.width < 1 || rect.height < 1 || rect.width > kLongestSide ||
      rect.height > kLongestSide) {
    Refuse(name, "is " + std::to_string(rect.width) + " x " + std::to_string(rect.height) +
                     " pixels; sides must be 1 to " + std::to_string(kLongestSide) + '.');
  }
  if (rect.x < -kFarthest || rect.x > kFarthest || rect.y < -kFarthest || rect.y > kFarthest) {
    Refuse(name, "begins at (" + std::to_string(rect.x) + ", " + std::to_string(rect.y) +
                     "); both must be within 2^28.");
  }
}

void CheckFrame(const glimmerblur_frame* frame, const char* name) {
  if (frame == nullptr) {
    throw Refusal(GLIMMERBLUR_INVALID_ARGUMENT, "The " + std::string(name) + " is null.");
  }
  if (frame->size != sizeof *frame || frame->version != GLIMMERBLUR_ABI) {
    throw Refusal(
        GLIMMERBLUR_INVALID_ARGUMENT,
        "The " + std::string(name) + " is a record of size " + std::to_string(frame->size) +
            " and version " + std::to_string(frame->version) + "; glimmerblur_frame_init makes " +
            std::to_string(sizeof *frame) + " and " + std::to_string(GLIMMERBLUR_ABI) + '.');
  }
  CheckRect(frame->rect, name);
  const auto checkKind = [&](const char* what, std::int32_t value, std::int32_t last) {
    if (value < 0 || value > last) {
      Refuse(name, "has " + std::string(what) + ' ' + std::to_string(value) + "; it must be 0 to " +
                       std::to_string(last) + '.');
    }
  };
  checkKind("sample", frame->sample, GLIMMERBLUR_FLOAT);
  checkKind("layout", frame->layout, GLIMMERBLUR_PLANES);
  checkKind("alpha", frame->alpha, GLIMMERBLUR_STRAIGHT);
  checkKind("first_row", frame->first_row, GLIMMERBLUR_BOTTOM);
  if (frame->layout == GLIMMERBLUR_RGBA && frame->channels != 3 && frame->channels != 4) {
    Refuse(name,
           "has " + std::to_string(frame->channels) + " channels; RGBA has 4, or 3 without alpha.");
  }
  if (frame->channels < 1 || frame->channels > kMostChannels) {
    Refuse(name, "has " + std::to_string(frame->channels) + " channels; it must be 1 to " +
                     std::to_string(kMostChannels) + '.');
  }
  CheckStride(frame->row_stride, name, "row");
  CheckStride(frame->pixel_stride, name, "pixel");
  CheckStride(frame->channel_stride, name, "channel");
  if (frame->data == nullptr) {
    Refuse(name, "has no samples: data is null.");
  }
}

FrameView ViewOf(const glimmerblur_frame& frame, const glimmerblur_rect& whole) {
  const bool topFirst = frame.first_row == GLIMMERBLUR_TOP;
  FrameView view;
  view.box = ToBox(frame.rect, whole, topFirst);
  view.sample = frame.sample;
  view.channels = frame.channels;
  view.isRgba = frame.layout == GLIMMERBLUR_RGBA;
  view.isStraight = view.isRgba && frame.channels == 4 && frame.alpha == GLIMMERBLUR_STRAIGHT;
  view.channelStride = frame.channel_stride != 0 ? frame.channel_stride
                                                 : static_cast<std::ptrdiff_t>(view.SampleBytes());
  view.pixelStride = frame.pixel_stride != 0
                         ? frame.pixel_stride
                         : static_cast<std::ptrdiff_t>(view.SampleBytes()) * frame.channels;
  const std::ptrdiff_t down =
      frame.row_stride != 0 ? frame.row_stride : view.pixelStride * frame.rect.width;
  auto* data = static_cast<unsigned char*>(frame.data);
  view.data = topFirst ? data + down * (frame.rect.height - 1) : data;
  view.rowStride = topFirst ? -down : down;
  return view;
}

std::uint64_t CountNotFinite(const FrameView& frame, const Box& box) {
  if (frame.sample != GLIMMERBLUR_FLOAT) {
    return 0;
  }
  constexpr std::uint32_t kExponent = 0x7F800000;
  std::uint64_t count = 0;
  for (std::int32_t y = box.y; y < box.Top(); ++y) {
    const unsigned char* pixel = frame.At(box.x, y);
    for (std::int32_t x = 0; x < box.width; ++x, pixel += frame.pixelStride) {
      for (std::int32_t c = 0; c < frame.channels; ++c) {
        const auto bits = Load<std::uint32_t>(pixel + c * frame.channelStride);
        count += (bits & kExponent) == kExponent ? 1U : 0U;
      }
    }
  }
  return count;
}

void ReadRow(const FrameView& frame, const RowReading& reading, std::int32_t x, std::int32_t y,
             const ImageRec& work, std::int32_t workRow) {
  OnSampleType(frame.sample, [&](auto sample) {
    using Sample = decltype(sample);
    if (work.sampleType == kSampleFloat) {
      Read<Sample>(frame, reading, x, y, work, WorkRow<float>(work, workRow));
    } else {
      Read<Sample>(frame, reading, x, y, work, WorkRow<std::uint16_t>(work, workRow));
    }
  });
}

void WriteRow(const ImageRec& work, std::int32_t workX, std::int32_t workRow, std::int32_t width,
              std::int32_t x, std::int32_t y, std::int32_t channel, const FrameView& frame) {
  const std::int32_t count = work.channels;
  const std::ptrdiff_t first = frame.isRgba ? 0 : channel * frame.channelStride;
  unsigned char* to = frame.At(x, y);
  OnSampleType(frame.sample, [&](auto sample) {
    using Sample = decltype(sample);
    const std::ptrdiff_t start = std::ptrdiff_t{workX} * count;
    if (work.sampleType == kSampleFloat) {
      Write<Sample>(WorkRow<float>(work, workRow) + start, count, width, first, frame, to);
    } else {
      Write<Sample>(WorkRow<std::uint16_t>(work, workRow) + start, count, width, first, frame, to);
    }
  });
}

}  // namespace lx
