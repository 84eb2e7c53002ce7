// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/inflate.h"

// Inputs are constant then.
#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>

namespace glimmerhost {
namespace {

// zlib's record of one stream.
class Stream {
 public:
  explicit Stream(const std::vector<std::uint8_t>& deflated) {
    stream_.next_in = deflated.data();
    stream_.avail_in = static_cast<uInt>(deflated.size());
    open_ = deflated.size() <= std::numeric_limits<uInt>::max() && inflateInit(&stream_) == Z_OK;
  }
  ~Stream() {
    if (open_) {
      inflateEnd(&stream_);
    }
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  bool IsOpen() const { return open_; }

  // How many more bytes there were, up to that many.
  std::size_t Take(std::uint8_t* to, std::size_t size) {
    const std::size_t most =
        std::min<std::size_t>(size, std::size_t{std::numeric_limits<uInt>::max()} / 2);
    stream_.next_out = to;
    stream_.avail_out = static_cast<uInt>(most);
    state_ = inflate(&stream_, Z_NO_FLUSH);
    return most - stream_.avail_out;
  }

  // The sum was right, too.
  bool IsAtEnd() const { return state_ == Z_STREAM_END; }
  bool GoesOn() const { return state_ == Z_OK; }

 private:
  z_stream stream_{};
  bool open_ = false;
  int state_ = Z_OK;
};

}  // namespace

bool InflateSlowly(const std::vector<std::uint8_t>& deflated, std::uint8_t* to, std::size_t size) {
  Stream stream(deflated);
  std::size_t done = 0;
  while (stream.IsOpen() && stream.GoesOn() && done < size) {
    done += stream.Take(to + done, size - done);
  }
  std::array<std::uint8_t, 16384> behind{};
  while (stream.IsOpen() && stream.GoesOn()) {
    stream.Take(behind.data(), behind.size());
  }
  return stream.IsAtEnd() && done == size;
}

bool Inflate(const std::vector<std::uint8_t>& deflated, std::uint8_t* to, std::size_t size) {
  return InflateFast(deflated, to, size) || InflateSlowly(deflated, to, size);
}

}  // namespace glimmerhost
