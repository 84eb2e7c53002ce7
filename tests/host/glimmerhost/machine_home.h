// SPDX-License-Identifier: BSD-3-Clause
// A home directory that the machine's settings name, for programs of this test alone where the
// system allows that. Elsewhere the settings come back at the end, and no two tests have them at
// once.
#pragma once

#include <filesystem>
#include <memory>

#include "tests/support/child_program.h"

namespace host_test {

class MachineHome {
 public:
  //   scratch  a folder for what this needs
  explicit MachineHome(std::filesystem::path scratch);
  ~MachineHome();
  MachineHome(const MachineHome&) = delete;
  MachineHome& operator=(const MachineHome&) = delete;

  void Set(const std::filesystem::path& home) const;

  // What a program is to be started with.
  lx_test::Variables Variables() const;

 private:
  struct Settings;
  std::unique_ptr<const Settings> settings_;
};

// What a person is told to do about a home that cannot be made.
extern const char* const kHomeAdvice;

}  // namespace host_test
