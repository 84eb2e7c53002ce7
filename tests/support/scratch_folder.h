// A folder of its own for a test, gone with it.
#pragma once

#include <stdlib.h>  // mkdtemp

#include <filesystem>
#include <string>
#include <system_error>

namespace lx_test {

class ScratchFolder {
 public:
  ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "glimmerXXXXXX").string();
    path_ = mkdtemp(name.data());
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
