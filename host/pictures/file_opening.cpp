// SPDX-License-Identifier: BSD-3-Clause
// Apart from the rest of FileBytes: the plug-in for pictures has the rest, and must not have a list
// of temporary files of its own.
#include <mutex>

#include "host/pictures/file_bytes.h"
#include "host/support/temporary_file.h"

namespace glimmerhost {

FileBytes::FileBytes(const std::filesystem::path& file, FileUse use) {
  std::unique_lock<std::mutex> hold;
  if (use == FileUse::kMake) {
    hold = HoldTemporaryFiles();
  }
  file_.reset(OpenFile(file, use));
  constexpr std::size_t kBuffer = 1U << 16U;
  buffer_ = std::make_unique_for_overwrite<char[]>(kBuffer);
  if (file_ != nullptr) {
    std::setvbuf(file_.get(), buffer_.get(), _IOFBF, kBuffer);
  }
  end_ = use == FileUse::kMake ? 0 : -1;
}

}  // namespace glimmerhost
