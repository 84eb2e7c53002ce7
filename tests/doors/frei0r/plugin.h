// SPDX-License-Identifier: BSD-3-Clause
// A file of frei0r, loaded and called as a program does.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "doors/frei0r/frei0r_api.h"
#include "tests/support/shared_library.h"

namespace lx_test {

class Frei0rFile {
 public:
  explicit Frei0rFile(const std::string& file) : library_(OpenLibrary(file.c_str())) {
    if (library_ == nullptr) {
      ADD_FAILURE() << file << ": " << LibraryError();
      return;
    }
    init = Function<decltype(&f0r_init)>("f0r_init");
    deinit = Function<decltype(&f0r_deinit)>("f0r_deinit");
    info = Function<decltype(&f0r_get_plugin_info)>("f0r_get_plugin_info");
    paramInfo = Function<decltype(&f0r_get_param_info)>("f0r_get_param_info");
    construct = Function<decltype(&f0r_construct)>("f0r_construct");
    destruct = Function<decltype(&f0r_destruct)>("f0r_destruct");
    set = Function<decltype(&f0r_set_param_value)>("f0r_set_param_value");
    get = Function<decltype(&f0r_get_param_value)>("f0r_get_param_value");
    update = Function<decltype(&f0r_update)>("f0r_update");
    update2 = Function<decltype(&f0r_update2)>("f0r_update2");
    init();
  }
  ~Frei0rFile() {
    if (library_ != nullptr) {
      deinit();
      CloseLibrary(library_);
    }
  }
  Frei0rFile(const Frei0rFile&) = delete;
  Frei0rFile& operator=(const Frei0rFile&) = delete;

  decltype(&f0r_init) init = nullptr;
  decltype(&f0r_deinit) deinit = nullptr;
  decltype(&f0r_get_plugin_info) info = nullptr;
  decltype(&f0r_get_param_info) paramInfo = nullptr;
  decltype(&f0r_construct) construct = nullptr;
  decltype(&f0r_destruct) destruct = nullptr;
  decltype(&f0r_set_param_value) set = nullptr;
  decltype(&f0r_get_param_value) get = nullptr;
  decltype(&f0r_update) update = nullptr;
  decltype(&f0r_update2) update2 = nullptr;

 private:
  template <class F>
  F Function(const char* name) {
    const AnyFunction function = FunctionOf(library_, name);
    EXPECT_NE(nullptr, function) << name;
    return reinterpret_cast<F>(function);
  }

  void* library_;
};

// An instance of a loaded file.
class Frei0rInstance {
 public:
  Frei0rInstance(const Frei0rFile& file, unsigned int width, unsigned int height)
      : file_(file), pixels_(std::size_t{width} * height), handle_(file.construct(width, height)) {}
  ~Frei0rInstance() {
    if (handle_ != nullptr) {
      file_.destruct(handle_);
    }
  }
  Frei0rInstance(const Frei0rInstance&) = delete;
  Frei0rInstance& operator=(const Frei0rInstance&) = delete;

  bool IsThere() const { return handle_ != nullptr; }
  void Set(int index, double value) { file_.set(handle_, &value, index); }
  double Get(int index) const {
    double value = -1.0;
    file_.get(handle_, &value, index);
    return value;
  }
  std::vector<std::uint32_t> Update(const std::vector<std::uint32_t>& in) {
    std::vector<std::uint32_t> out(pixels_);
    file_.update(handle_, 0.0, in.data(), out.data());
    return out;
  }
  std::vector<std::uint32_t> Update(const std::vector<std::uint32_t>& in,
                                    const std::vector<std::uint32_t>& second) {
    std::vector<std::uint32_t> out(pixels_);
    file_.update2(handle_, 0.0, in.data(), second.data(), nullptr, out.data());
    return out;
  }

 private:
  const Frei0rFile& file_;
  std::size_t pixels_;
  f0r_instance_t handle_;
};

}  // namespace lx_test
