// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/glimmerhost/machine_home.h"
#include "tests/support/registry_value.h"

namespace host_test {

const char* const kHomeAdvice =
    "a variable LX_HOME_DIR of the system's environment names another home directory";

struct MachineHome::Settings {
  lx_test::RegistryValue home{HKEY_LOCAL_MACHINE, lx_test::kMachineEnvironment, L"LX_HOME_DIR"};
};

MachineHome::MachineHome(std::filesystem::path /*scratch*/)
    : settings_(std::make_unique<Settings>()) {}

MachineHome::~MachineHome() = default;

void MachineHome::Set(const std::filesystem::path& home) const {
  settings_->home.SetText(home.wstring());
}

lx_test::Variables MachineHome::Variables() const { return {}; }

}  // namespace host_test
