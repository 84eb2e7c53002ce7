// SPDX-License-Identifier: BSD-3-Clause
// Pictures one after another on a pipe, in the PAM format: a short text, then the samples.
//
//   P7
//   WIDTH 1920
//   HEIGHT 1080
//   DEPTH 4
//   MAXVAL 65535
//   TUPLTYPE RGB_ALPHA
//   ENDHDR
//
// and rows from the top, without a gap, of one byte a sample up to MAXVAL 255, and of two above,
// the high one first. Alpha is straight.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "host/pictures/picture.h"

namespace glimmerhost {

class PamReader {
 public:
  //   from  in binary mode, borrowed
  //   name  what the stream is called in an error
  PamReader(std::FILE* from, std::string name) : from_(from), name_(std::move(name)) {}

  // None at the stream's end. Throws Failure, which names the stream and the picture's number,
  // the first being 1, if the picture is broken, cut short or of a kind that cannot be read.
  std::optional<Picture> Next();

  // Whether nothing follows. Waits until that is known.
  bool IsAtEnd();

  const std::string& Name() const { return name_; }

 private:
  struct Header;

  [[noreturn]] void Fail(const std::string& why) const;
  bool TakeLine(std::string* line);
  Header TakeHeader();
  void TakeField(const std::string& line, Header* header) const;
  void CheckHeader(const Header& header) const;
  Picture TakeSamples(const Header& header);

  std::FILE* from_;
  std::string name_;
  int number_ = 0;
};

// Writes the picture as RGB_ALPHA of 16 bits, and sends it off. Without alpha it is opaque.
//   picture  straight, if it has alpha
//   name     what the stream is called in an error
// Throws Failure, which names the stream, if its reader has gone or the disk is full.
void WritePam(const Picture& picture, std::FILE* to, const std::string& name);

}  // namespace glimmerhost
