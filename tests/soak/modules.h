// SPDX-License-Identifier: BSD-3-Clause
// Modules of several engines side by side in one host, loaded for the length of a scope.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/border/loaded_module.h"
#include "tests/support/fake_host.h"

namespace soak {

class Modules {
 public:
  explicit Modules(const std::vector<std::string>& engines) {
    for (const std::string& engine : engines) {
      const std::size_t first = host_.factory->classes.size();
      loaded_.push_back(
          std::make_unique<lx_test::LoadedModule>(&host_, FileOf(engine).string().c_str()));
      pages_[engine] = host_.factory->classes.at(first);
      renders_[engine] = host_.factory->classes.at(first + 1);
    }
  }
  ~Modules() {
    pages_.clear();
    renders_.clear();
  }
  Modules(const Modules&) = delete;
  Modules& operator=(const Modules&) = delete;

  using Instance = quantel::cPtr<quantel::iFactory::iInstance>;

  // On any thread.
  Instance MakePage(const std::string& engine) const { return pages_.at(engine)->create(); }
  Instance MakeRender(const std::string& engine) const { return renders_.at(engine)->create(); }

 private:
  using Constructor = quantel::cPtr<quantel::iFactory::iConstructor>;

  static std::filesystem::path FileOf(const std::string& engine) {
    const std::filesystem::path exact(EXACT_MODULE_FILE);
    return engine == "exact" ? exact : exact.parent_path() / engine / exact.filename();
  }

  lx_test::FakeHost host_;
  std::vector<std::unique_ptr<lx_test::LoadedModule>> loaded_;  // gone before the host
  std::map<std::string, Constructor> pages_;
  std::map<std::string, Constructor> renders_;
};

}  // namespace soak
