// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/png_library.h"

#include <cstdio>
#include <cstdlib>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

void OnWarning(png_structp /*png*/, png_const_charp /*message*/) {}

void OnRead(png_structp png, png_bytep to, std::size_t count) {
  if (static_cast<FileBytes*>(png_get_io_ptr(png))->Read(to, count) != count) {
    png_error(png, "the file ends too early");
  }
}

void OnWrite(png_structp png, png_bytep from, std::size_t count) {
  if (static_cast<FileBytes*>(png_get_io_ptr(png))->Write(from, count) != count) {
    png_error(png, "the system does not take all of it");
  }
}

void OnGive(png_structp /*png*/, png_voidp block) { std::free(block); }

void OnFlush(png_structp /*png*/) {}

}  // namespace

PngLibrary::PngLibrary(FileBytes* bytes, Use use, std::size_t largestBlock)
    : use_(use), largestBlock_(largestBlock) {
  const auto create = use == Use::kRead ? png_create_read_struct_2 : png_create_write_struct_2;
  const bool made = Run([&] {
    png_ = create(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning, this, OnTake, OnGive);
    info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
  });
  if (!made || info_ == nullptr) {
    throw Failure("not enough memory");
  }
  if (use == Use::kRead) {
    png_set_read_fn(png_, bytes, OnRead);
  } else {
    png_set_write_fn(png_, bytes, OnWrite, OnFlush);
  }
}

PngLibrary::~PngLibrary() {
  if (use_ == Use::kRead) {
    png_destroy_read_struct(&png_, &info_, nullptr);
  } else {
    png_destroy_write_struct(&png_, &info_);
  }
}

void PngLibrary::OnError(png_structp png, png_const_charp message) {
  auto* const library = static_cast<PngLibrary*>(png_get_error_ptr(png));
  std::snprintf(library->trouble_.data(), library->trouble_.size(), "%s", message);
  std::longjmp(library->back_, 1);
}

png_voidp PngLibrary::OnTake(png_structp png, png_alloc_size_t size) {
  auto* const library = static_cast<PngLibrary*>(png_get_mem_ptr(png));
  if (size > library->largestBlock_) {
    return nullptr;
  }
  void* const block = std::malloc(size);
  library->refused_ = library->refused_ || block == nullptr;
  return block;
}

}  // namespace glimmerhost
