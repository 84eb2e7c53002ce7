// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/openimageio/openimageio_output.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "host/pictures/guards/exr_chunks.h"
#include "host/pictures/openimageio/file_proxy.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

using Output = std::unique_ptr<OIIO::ImageOutput>;

constexpr const char* kNotTaken = "the system does not take all of it";

// A reason that may have come as several lines, or as none.
[[noreturn]] void WriteFailure(std::string why) {
  std::replace(why.begin(), why.end(), '\n', ' ');
  throw Failure(why.empty() ? "the picture library could not write it" : why);
}

// Also the end of the output, which after a failure may write on.
void WriteTo(const std::string& name, const std::vector<OutputPart>& parts, Output output) {
  std::vector<OIIO::ImageSpec> specs;
  specs.reserve(parts.size());
  for (const OutputPart& part : parts) {
    specs.push_back(part.spec);
  }
  bool done = specs.size() == 1 ? output->open(name, specs[0])
                                : output->open(name, static_cast<int>(specs.size()), specs.data());
  for (std::size_t i = 0; done && i < parts.size(); ++i) {
    done = (i == 0 || output->open(name, specs[i], OIIO::ImageOutput::AppendSubimage)) &&
           output->write_image(parts[i].type, parts[i].samples);
  }
  if (!done || !output->close()) {
    WriteFailure(output->geterror());
  }
}

// A file without a place on a disk.
class MemoryFile {
 public:
  MemoryFile() : file_(memfd_create("picture", MFD_CLOEXEC)) {
    if (file_ < 0) {
      throw Failure("not enough memory");
    }
  }
  ~MemoryFile() { close(file_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::string Name() const { return "/proc/self/fd/" + std::to_string(file_); }

  // A limit on the size of files, which a full disk is not, holds for it too, and writers overlook
  // that they met it. One that writes in blocks may have stopped a block before: that is not seen.
  bool IsAtLimit() const {
    rlimit limit{};
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
           static_cast<rlim_t>(lseek(file_, 0, SEEK_END)) >= limit.rlim_cur;
  }

  // False if not all of it gets there.
  bool CopyTo(FileBytes* to) const {
    std::array<char, 65536> buffer{};
    lseek(file_, 0, SEEK_SET);
    for (;;) {
      const ssize_t got = read(file_, buffer.data(), buffer.size());
      if (got <= 0) {
        return got == 0;
      }
      const auto count = static_cast<std::size_t>(got);
      if (to->Write(buffer.data(), count) != count) {
        return false;
      }
    }
  }

 private:
  int file_;
};

// TIFF cannot be written to a file that is handed over, although the library says so: it reads
// the file again where there is an EXIF directory, and leaves that as the picture's.
bool TakesFile(const OIIO::ImageOutput& output) {
  return output.supports("ioproxy") != 0 && std::string_view(output.format_name()) != "tiff";
}

// For formats whose writers open a file themselves: into memory, which says when it is full.
void WriteByMemory(FileBytes* bytes, const std::vector<OutputPart>& parts, Output output) {
  const MemoryFile memory;
  WriteTo(memory.Name(), parts, std::move(output));
  const bool copied = !memory.IsAtLimit() && memory.CopyTo(bytes);
  const bool hasAll = HasAllExrChunks(bytes);
  if (!bytes->Close() || !copied) {
    throw Failure(kNotTaken);
  }
  if (!hasAll) {
    throw std::bad_alloc();
  }
}

}  // namespace

void WriteWhole(const std::string& name, FileBytes* bytes, const std::vector<OutputPart>& parts,
                Output output) {
  // Of several parts the library opens a file itself, whatever it is handed.
  if (!TakesFile(*output) || parts.size() > 1) {
    WriteByMemory(bytes, parts, std::move(output));
    return;
  }
  FileProxy proxy(name, bytes);
  output->set_ioproxy(&proxy);
  std::exception_ptr trouble;
  try {
    WriteTo(name, parts, std::move(output));
  } catch (const Failure&) {
    trouble = std::current_exception();
  }
  const bool hasAll = trouble || HasAllExrChunks(bytes);
  // What the library says of it is long, and names the file otherwise than a person knows it.
  if (!proxy.Finish()) {
    throw Failure(kNotTaken);
  }
  if (trouble) {
    std::rethrow_exception(trouble);
  }
  if (!hasAll) {
    throw std::bad_alloc();
  }
}

}  // namespace glimmerhost
