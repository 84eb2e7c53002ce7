// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/paths.h"

#include <cstdio>
#include <cstring>

#include "baselib/platform/platform.h"

namespace lx {
namespace {

// At most two.
std::size_t LeadingSeparators(const char* path, char separator) {
  if (path[0] != separator) {
    return 0;
  }
  return path[1] == separator ? 2 : 1;
}

// What lies behind that many components, each with the separator at its end; null where the
// path ends before.
const char* SkipComponents(const char* path, std::int32_t count, char separator) {
  for (std::int32_t i = 0; i < count; ++i) {
    path = std::strchr(path, separator);
    if (path == nullptr) {
      return nullptr;
    }
    ++path;
  }
  return *path == '\0' ? nullptr : path;
}

// A text of bounded length.
class PathText {
 public:
  explicit PathText(char* text) : text_(text) { text_[0] = '\0'; }

  void Add(char c) {
    if (length_ < kPathBytes - 1) {
      text_[length_++] = c;
      text_[length_] = '\0';
    }
  }
  void Add(const char* text) {
    while (*text != '\0') {
      Add(*text++);
    }
  }
  bool IsEmpty() const { return length_ == 0; }
  char Last() const { return length_ == 0 ? '\0' : text_[length_ - 1]; }

 private:
  char* text_;
  std::size_t length_ = 0;
};

}  // namespace

const char* path_component(const char* path, std::int32_t index, char* out) {
  static char component[kPathBytes];
  if (path == nullptr || index < 0) {
    return nullptr;
  }
  const char separator = GetPlatform().pathSeparator;
  const std::size_t leading = LeadingSeparators(path, separator);
  const char* rest = SkipComponents(path + leading, index, separator);
  if (rest == nullptr) {
    return nullptr;
  }
  PathText text(component);
  for (std::size_t i = 0; index == 0 && i < leading; ++i) {
    text.Add(separator);
  }
  while (*rest != '\0' && *rest != separator) {
    text.Add(*rest++);
  }
  // A drive alone stands for the directory that is current on it; with a separator, for its root.
  if (index == 0 && text.Last() == ':') {
    text.Add(separator);
  }
  if (out != nullptr) {
    std::memcpy(out, component, sizeof component);
  }
  return component;
}

bool is_directory(const char* path) { return GetPlatform().isDirectory(path); }

std::int32_t make_directory_path(const char* path) {
  if (is_directory(path)) {
    return 1;
  }
  const char separator = GetPlatform().pathSeparator;
  const bool isNetwork = LeadingSeparators(path, separator) == 2;
  char prefix[kPathBytes];
  PathText text(prefix);
  for (std::int32_t index = 0;; ++index) {
    const char* component = path_component(path, index, nullptr);
    if (component == nullptr) {
      return 1;
    }
    if (!text.IsEmpty()) {
      text.Add(separator);
    }
    text.Add(component);
    // A server and its share are no directories that could be made.
    const bool isShare = isNetwork && index < 2;
    if (!isShare && !is_directory(prefix) && !GetPlatform().makeDirectory(prefix)) {
      return 0;
    }
  }
}

bool set_file_writable(const char* path, bool writable) {
  return GetPlatform().setWritable(path, writable);
}

}  // namespace lx
