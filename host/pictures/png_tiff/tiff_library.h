// SPDX-License-Identifier: BSD-3-Clause
// TiffLibrary: libtiff's record of one file, with what it says about it kept off stderr.
#pragma once

#include <tiffio.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "host/pictures/file_bytes.h"

namespace glimmerhost {

class TiffLibrary {
 public:
  enum class Use { kRead, kWrite };

  // Reads the first directory where there is one. A file that libtiff cannot open, or that
  // asks for more memory than one of its size can need, leaves a null Tiff() and the trouble.
  TiffLibrary(const std::filesystem::path& file, Use use);
  ~TiffLibrary();
  TiffLibrary(const TiffLibrary&) = delete;
  TiffLibrary& operator=(const TiffLibrary&) = delete;

  TIFF* Tiff() const { return tiff_; }

  // Reads what stands at a place of the file, past libtiff. False if that is less.
  bool ReadAt(std::uint64_t place, void* to, std::size_t count);

  // Writes what is left, and closes the file. False if that fails.
  bool Close();

  // Asks nothing of libtiff's record any more, not even to free it. Its blocks are lost; the file
  // is closed.
  void Abandon() { tiff_ = nullptr; }

  // Whether the system would not do what libtiff asked of it.
  bool IsRefused() const {
    return bytes_.IsRefused() || (bytes_.IsOpen() && bytes_.IsUnreadable());
  }

  // Whether there was no memory for a tag: libtiff leaves it out, and goes on. What it is not
  // allowed to take does not count.
  bool IsStarved() const { return starved_ && !limited_; }

  // The first error since the file was opened, or why it was not; empty if there was none.
  const char* Trouble() const { return trouble_.data(); }

 private:
  static int OnError(TIFF* tiff, void* library, const char* place, const char* format,
                     va_list values);
  static int OnWarning(TIFF* tiff, void* library, const char* place, const char* format,
                       va_list values);
  void NoteMemory(const char* words);

  FileBytes bytes_;
  TIFF* tiff_ = nullptr;
  bool starved_ = false;
  bool limited_ = false;
  std::array<char, 200> trouble_{};
};

}  // namespace glimmerhost
