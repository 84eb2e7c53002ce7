// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/clip/frame_reader.h"

#include "host/module/second_clip.h"
#include "host/pictures/alpha.h"
#include "host/pictures/picture_file.h"
#include "host/shots/file_sequence.h"
#include "host/shots/steady_file.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// The samples alone: the window writes no file, and what a file says besides would only take room.
Picture ReadSamples(const fs::path& file, std::vector<std::string>* remarks) {
  ReadOptions options;
  options.precision = Precision::kByFile;
  options.keptFor = kNoFormat;
  ReadReport report;
  Picture picture;
  ReadSteadily(file, [&] { picture = ReadPicture(file, options, &report); });
  *remarks = report.lines;
  return picture;
}

// What the module is given; floats go past it.
quantel::cPtr<FrameImage> SourceOf(const Picture& picture) {
  return quantel::cPtr<FrameImage>(picture.IsFloat() ? nullptr : new FrameImage(picture));
}

}  // namespace

std::shared_ptr<const LoadedFrame> FrameReader::Read(const ViewedClip& clip,
                                                     const FrameReading& reading, int frame) {
  auto read = std::make_shared<LoadedFrame>();
  read->frame = frame;
  read->file = clip.File(frame);
  auto picture = std::make_shared<Picture>(ReadSamples(read->file, &read->remarks));
  if (reading.premultiplied) {
    Premultiply(picture.get());
  }
  read->source = SourceOf(*picture);
  read->picture = std::move(picture);
  SettleIn(reading, read.get());
  return read;
}

std::shared_ptr<const LoadedFrame> FrameReader::Settle(const LoadedFrame& frame,
                                                       const FrameReading& reading) {
  auto settled = std::make_shared<LoadedFrame>(frame);
  SettleIn(reading, settled.get());
  return settled;
}

void FrameReader::SettleIn(const FrameReading& reading, LoadedFrame* frame) {
  frame->pixelAspect =
      reading.pixelAspect.first == 0 ? frame->picture->pixelAspect : reading.pixelAspect;
  TakeSpread(reading, frame);
}

void FrameReader::TakeSpread(const FrameReading& reading, LoadedFrame* frame) {
  frame->spread = {};
  frame->spreadRemarks.clear();
  if (reading.spread.empty()) {
    return;
  }
  const fs::path file = FileSequence("--spread", reading.spread).File(frame->frame);
  const std::pair<int, int> size{frame->picture->width, frame->picture->height};
  if (!spread_ || file != spreadFile_ || size != spreadSize_ ||
      reading.premultiplied != spreadPremultiplied_) {
    spread_ = {};
    spreadRemarks_.clear();
    ReadSteadily(file, [&] {
      spread_ = OpenSpread(file, size.first, size.second, reading.premultiplied, &spreadRemarks_);
    });
    spreadFile_ = file;
    spreadSize_ = size;
    spreadPremultiplied_ = reading.premultiplied;
  }
  frame->spread = spread_;
  frame->spreadRemarks = spreadRemarks_;
}

}  // namespace glimmerhost
