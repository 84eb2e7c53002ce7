// SPDX-License-Identifier: BSD-3-Clause
// PngLibrary: libpng's records for one file.
//
// libpng tells of an error by a call that must not return, and knows no exceptions. So its
// calls are made in steps, which an error leaves by a long jump:
//
//   if (!library.Run([&] { png_read_info(library.Png(), library.Info()); })) { ... }
//
// A step holds no object that has a destructor, and calls nothing of ours that does. What it
// needs is made before it; what it finds is looked at after.
#pragma once

#include <png.h>

#include <array>
#include <csetjmp>
#include <cstddef>
#include <limits>

#include "host/pictures/file_bytes.h"

namespace glimmerhost {

class PngLibrary {
 public:
  enum class Use { kRead, kWrite };

  //   bytes         borrowed
  //   largestBlock  what libpng may take at once, in bytes; more is as if there were none
  // Throws Failure where memory does not suffice.
  PngLibrary(FileBytes* bytes, Use use,
             std::size_t largestBlock = std::numeric_limits<std::size_t>::max());
  ~PngLibrary();
  PngLibrary(const PngLibrary&) = delete;
  PngLibrary& operator=(const PngLibrary&) = delete;

  png_structp Png() const { return png_; }
  png_infop Info() const { return info_; }

  // False if the step was left; what libpng said is the trouble.
  template <class Step>
  bool Run(const Step& step) {
    if (setjmp(back_) != 0) {
      return false;
    }
    step();
    return true;
  }

  // Whether the system had no memory for something. Where libpng can do without that, it leaves it
  // out.
  bool IsRefused() const { return refused_; }

  const char* Trouble() const { return trouble_.data(); }

 private:
  static void OnError(png_structp png, png_const_charp message);
  static png_voidp OnTake(png_structp png, png_alloc_size_t size);

  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  Use use_;
  std::size_t largestBlock_;
  bool refused_ = false;
  std::jmp_buf back_;
  std::array<char, 200> trouble_{};
};

}  // namespace glimmerhost
