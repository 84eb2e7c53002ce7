// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/openimageio/file_proxy.h"

namespace glimmerhost {

FileProxy::FileProxy(const std::string& name, FileBytes* bytes)
    : IOProxy(name, Write), bytes_(bytes) {}

bool FileProxy::Finish() { return bytes_->Close() && !lost_; }

bool FileProxy::MoveTo(std::int64_t offset) const {
  return bytes_->Seek(offset, std::ios_base::beg) == offset;
}

std::int64_t FileProxy::tell() { return bytes_->Seek(0, std::ios_base::cur); }

bool FileProxy::seek(std::int64_t offset) {
  const bool there = MoveTo(offset);
  // What is buffered goes out before.
  lost_ = lost_ || !there;
  return there;
}

std::size_t FileProxy::read(void* to, std::size_t count) { return bytes_->Read(to, count); }

std::size_t FileProxy::write(const void* from, std::size_t count) {
  const std::size_t written = bytes_->Write(from, count);
  lost_ = lost_ || written != count;
  return written;
}

std::size_t FileProxy::pread(void* to, std::size_t count, std::int64_t offset) {
  const std::lock_guard<std::mutex> guard(lock_);
  const std::int64_t before = tell();
  const std::size_t got = seek(offset) ? read(to, count) : 0;
  seek(before);
  return got;
}

std::size_t FileProxy::pwrite(const void* from, std::size_t count, std::int64_t offset) {
  const std::lock_guard<std::mutex> guard(lock_);
  const std::int64_t before = tell();
  const std::size_t written = seek(offset) ? write(from, count) : 0;
  seek(before);
  return written;
}

std::size_t FileProxy::size() const {
  const std::int64_t before = bytes_->Seek(0, std::ios_base::cur);
  const std::int64_t end = bytes_->Seek(0, std::ios_base::end);
  MoveTo(before);
  return end < 0 ? 0 : static_cast<std::size_t>(end);
}

}  // namespace glimmerhost
