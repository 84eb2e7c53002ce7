// SPDX-License-Identifier: BSD-3-Clause
// FileProxy: a new file for OpenImageIO to write to, which notices what does not get there.
//
// The library's own does not look whether the last of what it has buffered was taken: on a full
// disk a picture without its end would pass for whole.
#pragma once

#include <OpenImageIO/filesystem.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

#include "host/pictures/file_bytes.h"

namespace glimmerhost {

class FileProxy : public OIIO::Filesystem::IOProxy {
 public:
  //   name   what the library calls it
  //   bytes  a file that has just been made, borrowed
  FileProxy(const std::string& name, FileBytes* bytes);

  // Once the library has closed its output. False if anything was lost.
  bool Finish();

  // Not the library's own word "file", at which it takes the object for one of its own.
  const char* proxytype() const override { return "glimmerhost"; }
  // The library's word for the end of its work; the file is closed in Finish.
  void close() override {}
  std::int64_t tell() override;
  bool seek(std::int64_t offset) override;
  std::size_t read(void* to, std::size_t count) override;
  std::size_t write(const void* from, std::size_t count) override;
  std::size_t pread(void* to, std::size_t count, std::int64_t offset) override;
  std::size_t pwrite(const void* from, std::size_t count, std::int64_t offset) override;
  std::size_t size() const override;

 private:
  bool MoveTo(std::int64_t offset) const;

  FileBytes* bytes_;
  std::mutex lock_;  // of those two that may be called by several threads
  bool lost_ = false;
};

}  // namespace glimmerhost
