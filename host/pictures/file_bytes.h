// SPDX-License-Identifier: BSD-3-Clause
// FileBytes: the bytes of a file, for libraries written in C.
//
// Opened by whatever name the system allows, and no operation throws: an exception must not
// pass through the frames of a library that knows none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <ios>
#include <memory>

#include "host/support/files.h"

namespace glimmerhost {

class FileBytes {
 public:
  // The file is closed, and nothing said about it, when the object goes.
  FileBytes(const std::filesystem::path& file, FileUse use);

  bool IsOpen() const { return file_ != nullptr; }

  // How many bytes went: fewer than asked at the file's end, or if the system fails.
  std::size_t Read(void* to, std::size_t count) noexcept;
  std::size_t Write(const void* from, std::size_t count) noexcept;

  // The new place, or -1. Moving to where it is already takes no call of the system: libraries say
  // the place before every row.
  std::int64_t Seek(std::int64_t offset, std::ios_base::seekdir from) noexcept;

  // Whether the system has failed to read, and not just come to the end of the file.
  bool IsUnreadable() const;

  // False if what was written did not all get there, or not to its place.
  bool Close() noexcept;

  // Whether anything was not written, or a place not reached, so far.
  bool IsRefused() const { return refused_; }

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  enum class Turn { kNone, kRead, kWrite };

  void TakeTurn(Turn turn) noexcept;

  std::unique_ptr<char[]>
      buffer_;  // the file's; the C library's own holds a row of a small picture
  std::unique_ptr<std::FILE, Closer> file_;
  Turn turn_ = Turn::kNone;
  std::int64_t place_ = 0;  // -1 after a failure
  std::int64_t end_ = -1;   // of a file that is made; -1 while it is not known
  bool refused_ = false;
};

}  // namespace glimmerhost
