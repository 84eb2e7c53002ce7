#include "host/pictures/file_bytes.h"

namespace glimmerhost {

std::size_t FileBytes::Read(void* to, std::size_t count) noexcept {
  return std::fread(to, 1, count, file_.get());
}

std::size_t FileBytes::Write(const void* from, std::size_t count) noexcept {
  // Some libraries write nothing from nowhere, which the C library does not allow.
  const std::size_t written = count == 0 ? 0 : std::fwrite(from, 1, count, file_.get());
  refused_ = refused_ || written != count;
  return written;
}

std::int64_t FileBytes::Seek(std::int64_t offset, std::ios_base::seekdir from) noexcept {
  const int whence = from == std::ios_base::beg   ? SEEK_SET
                     : from == std::ios_base::cur ? SEEK_CUR
                                                  : SEEK_END;
  const std::int64_t place =
      SeekFile(file_.get(), offset, whence) ? TellFile(file_.get()) : std::int64_t{-1};
  refused_ = refused_ || place < 0;
  return place;
}

bool FileBytes::Close() noexcept {
  const bool good = std::ferror(file_.get()) == 0;
  return std::fclose(file_.release()) == 0 && good;
}

}  // namespace glimmerhost
