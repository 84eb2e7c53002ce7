// SPDX-License-Identifier: BSD-3-Clause
#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>

#include "tests/host/glimmerhost/machine_home.h"

namespace host_test {

namespace fs = std::filesystem;

const char* const kHomeAdvice =
    "a line LX_HOME_DIR=FOLDER in /etc/environment names another home directory";

struct MachineHome::Settings {
  fs::path folder;
};

MachineHome::MachineHome(fs::path scratch)
    : settings_(std::make_unique<Settings>(Settings{std::move(scratch)})) {
  fs::create_directories(settings_->folder / "etc");
}

MachineHome::~MachineHome() = default;

void MachineHome::Set(const fs::path& home) const {
  std::ofstream(settings_->folder / "etc/environment") << "LX_HOME_DIR=" << home.string() << '\n';
}

// The sanitizer's runtime wants to be the first library; here another one has to be.
lx_test::Variables MachineHome::Variables() const {
  const char* options = std::getenv("ASAN_OPTIONS");
  return {{"LD_PRELOAD", SETTINGS_ELSEWHERE},
          {"SETTINGS_ELSEWHERE", settings_->folder.string() + "/"},
          {"ASAN_OPTIONS",
           std::string(options == nullptr ? "" : options) + ":verify_asan_link_order=0"}};
}

}  // namespace host_test
