// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/tiff_library.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <string_view>
#include <system_error>

namespace glimmerhost {
namespace {

FileBytes* Bytes(thandle_t handle) { return static_cast<FileBytes*>(handle); }

tmsize_t OnRead(thandle_t handle, void* to, tmsize_t count) {
  return static_cast<tmsize_t>(Bytes(handle)->Read(to, static_cast<std::size_t>(count)));
}

tmsize_t OnWrite(thandle_t handle, void* from, tmsize_t count) {
  return static_cast<tmsize_t>(Bytes(handle)->Write(from, static_cast<std::size_t>(count)));
}

toff_t OnSeek(thandle_t handle, toff_t offset, int whence) {
  // A place that a broken file names, and no file has: the system is not asked for it.
  if (whence == SEEK_SET && static_cast<std::int64_t>(offset) < 0) {
    return static_cast<toff_t>(-1);
  }
  const std::ios_base::seekdir from = whence == SEEK_SET   ? std::ios_base::beg
                                      : whence == SEEK_CUR ? std::ios_base::cur
                                                           : std::ios_base::end;
  return static_cast<toff_t>(Bytes(handle)->Seek(static_cast<std::int64_t>(offset), from));
}

// The object that owns the bytes closes them.
int OnClose(thandle_t /*handle*/) { return 0; }

toff_t OnSize(thandle_t handle) {
  const std::int64_t here = Bytes(handle)->Seek(0, std::ios_base::cur);
  const std::int64_t size = Bytes(handle)->Seek(0, std::ios_base::end);
  Bytes(handle)->Seek(here, std::ios_base::beg);
  return static_cast<toff_t>(std::max<std::int64_t>(size, 0));
}

// A list of strips grows to four times itself, and one block is read at a time.
tmsize_t LargestBlockOfMemory(const std::filesystem::path& file) {
  constexpr std::uintmax_t kAtLeast = 16U << 20U;
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  return static_cast<tmsize_t>(error ? kAtLeast : std::max(kAtLeast, 8 * size));
}

}  // namespace

TiffLibrary::TiffLibrary(const std::filesystem::path& file, Use use)
    : bytes_(file, use == Use::kRead ? FileUse::kRead : FileUse::kMake) {
  if (!bytes_.IsOpen()) {
    std::snprintf(trouble_.data(), trouble_.size(), "the system does not open it");
    return;
  }
  TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
  if (options == nullptr) {
    throw std::bad_alloc();
  }
  TIFFOpenOptionsSetErrorHandlerExtR(options, OnError, this);
  TIFFOpenOptionsSetWarningHandlerExtR(options, OnWarning, this);
  if (use == Use::kRead) {
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, LargestBlockOfMemory(file));
  }
  // No name: libtiff would put it before every line.
  tiff_ = TIFFClientOpenExt("", use == Use::kRead ? "r" : "w", &bytes_, OnRead, OnWrite, OnSeek,
                            OnClose, OnSize, nullptr, nullptr, options);
  TIFFOpenOptionsFree(options);
  if (tiff_ != nullptr) {
    trouble_[0] = '\0';
  }
}

TiffLibrary::~TiffLibrary() {
  if (tiff_ != nullptr) {
    TIFFCleanup(tiff_);
  }
}

bool TiffLibrary::ReadAt(std::uint64_t place, void* to, std::size_t count) {
  const auto from = static_cast<std::int64_t>(place);
  return from >= 0 && bytes_.Seek(from, std::ios_base::beg) == from &&
         bytes_.Read(to, count) == count;
}

bool TiffLibrary::Close() {
  const bool flushed = TIFFFlush(tiff_) != 0;
  TIFFCleanup(tiff_);
  tiff_ = nullptr;
  return bytes_.Close() && flushed;
}

// The first one: later ones follow from it.
int TiffLibrary::OnError(TIFF* /*tiff*/, void* library, const char* /*place*/, const char* format,
                         va_list values) {
  std::array<char, 200> words{};
  std::vsnprintf(words.data(), words.size(), format, values);
  auto* const self = static_cast<TiffLibrary*>(library);
  self->NoteMemory(words.data());
  if (self->trouble_[0] == '\0') {
    self->trouble_ = words;
  }
  return 1;
}

int TiffLibrary::OnWarning(TIFF* /*tiff*/, void* library, const char* /*place*/, const char* format,
                           va_list values) {
  std::array<char, 200> words{};
  std::vsnprintf(words.data(), words.size(), format, values);
  static_cast<TiffLibrary*>(library)->NoteMemory(words.data());
  return 1;
}

// There are only words to tell by.
void TiffLibrary::NoteMemory(const char* words) {
  const std::string_view said = words;
  const auto has = [said](const char* part) { return said.find(part) != std::string_view::npos; };
  starved_ = starved_ || has("Out of memory") || has("Failed to allocate");
  limited_ = limited_ || has("beyond the");
}

}  // namespace glimmerhost
