// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/file_bytes.h"

#include <algorithm>

namespace glimmerhost {

std::size_t FileBytes::Read(void* to, std::size_t count) noexcept {
  TakeTurn(Turn::kRead);
  const std::size_t got = std::fread(to, 1, count, file_.get());
  place_ = place_ < 0 ? place_ : place_ + static_cast<std::int64_t>(got);
  return got;
}

bool FileBytes::IsUnreadable() const { return std::ferror(file_.get()) != 0; }

std::size_t FileBytes::Write(const void* from, std::size_t count) noexcept {
  TakeTurn(Turn::kWrite);
  // Some libraries write nothing from nowhere, which the C library does not allow.
  const std::size_t written = count == 0 ? 0 : std::fwrite(from, 1, count, file_.get());
  refused_ = refused_ || written != count;
  place_ = written != count || place_ < 0 ? -1 : place_ + static_cast<std::int64_t>(written);
  end_ = end_ < 0 || place_ < 0 ? -1 : std::max(end_, place_);
  return written;
}

std::int64_t FileBytes::Seek(std::int64_t offset, std::ios_base::seekdir from) noexcept {
  const bool isKnown = from == std::ios_base::beg   ? offset == place_
                       : from == std::ios_base::cur ? offset == 0
                                                    : end_ + offset == place_ && end_ >= 0;
  if (isKnown && place_ >= 0) {
    return place_;
  }
  const int whence = from == std::ios_base::beg   ? SEEK_SET
                     : from == std::ios_base::cur ? SEEK_CUR
                                                  : SEEK_END;
  place_ = SeekFile(file_.get(), offset, whence) ? TellFile(file_.get()) : std::int64_t{-1};
  refused_ = refused_ || place_ < 0;
  return place_;
}

// The C library wants to be told between reading and writing.
void FileBytes::TakeTurn(Turn turn) noexcept {
  if (turn_ != turn && turn_ != Turn::kNone) {
    refused_ = !SeekFile(file_.get(), 0, SEEK_CUR) || refused_;
  }
  turn_ = turn;
}

bool FileBytes::Close() noexcept {
  const bool good = std::ferror(file_.get()) == 0 && !refused_;
  return std::fclose(file_.release()) == 0 && good;
}

}  // namespace glimmerhost
