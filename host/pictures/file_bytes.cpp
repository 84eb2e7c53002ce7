#include "host/pictures/file_bytes.h"

#include <exception>

namespace glimmerhost {

FileBytes::FileBytes(const std::filesystem::path& file, std::ios_base::openmode mode) {
  // Without the path's narrow form between: it cannot say every name.
  buffer_.open(file.c_str(), mode | std::ios_base::binary);
}

std::size_t FileBytes::Read(void* to, std::size_t count) noexcept {
  try {
    const auto read = buffer_.sgetn(static_cast<char*>(to), static_cast<std::streamsize>(count));
    return static_cast<std::size_t>(read);
  } catch (const std::exception&) {
    return 0;
  }
}

std::size_t FileBytes::Write(const void* from, std::size_t count) noexcept {
  std::size_t written = 0;
  try {
    written = static_cast<std::size_t>(
        buffer_.sputn(static_cast<const char*>(from), static_cast<std::streamsize>(count)));
  } catch (const std::exception&) {
    written = 0;
  }
  refused_ = refused_ || written != count;
  return written;
}

std::int64_t FileBytes::Seek(std::int64_t offset, std::ios_base::seekdir from) noexcept {
  std::int64_t place = -1;
  try {
    place = static_cast<std::int64_t>(std::streamoff(buffer_.pubseekoff(offset, from)));
  } catch (const std::exception&) {
    place = -1;
  }
  refused_ = refused_ || place < 0;
  return place;
}

bool FileBytes::Close() noexcept {
  try {
    return buffer_.close() != nullptr;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace glimmerhost
