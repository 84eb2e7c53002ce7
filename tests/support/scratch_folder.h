// SPDX-License-Identifier: BSD-3-Clause
// A folder of its own for a test, gone with it.
#pragma once

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace lx_test {

class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device number;
    do {
      path_ = std::filesystem::temp_directory_path() / ("glimmer" + std::to_string(number()));
      // Not where another has the name already.
    } while (!std::filesystem::create_directory(path_));
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
  }
  ~ScratchFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

  const std::filesystem::path& Path() const { return path_; }

  int FileCount() const {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(path_)) {
      ++count;
    }
    return count;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace lx_test
