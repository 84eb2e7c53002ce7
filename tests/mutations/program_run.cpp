// SPDX-License-Identifier: BSD-3-Clause
#include "tests/mutations/program_run.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <system_error>

namespace mutations {

namespace fs = std::filesystem;

std::string ReadBytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void WriteBytes(const fs::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

RunFolder::RunFolder() : folder_(around_ / "folder"), current_(fs::current_path()) {
  fs::create_directory(folder_);
  fs::current_path(folder_);
}

RunFolder::~RunFolder() {
  std::error_code error;
  fs::current_path(current_, error);
}

RunFolder::Files RunFolder::Look() const {
  Files files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_)) {
    if (!entry.is_directory()) {
      files[entry.path().lexically_relative(folder_).string()] = ReadBytes(entry.path());
    }
  }
  return files;
}

void RunFolder::Keep() {
  kept_ = Look();
  before_ = kept_;
}

void RunFolder::Put(const std::string& name, const std::string& bytes) {
  WriteBytes(folder_ / name, bytes);
  before_[name] = bytes;
}

RunResult RunFolder::Do(const std::vector<std::string>& line, const std::string& input) {
  EXPECT_NE(nullptr, std::freopen(input.empty() ? "/dev/null" : input.c_str(), "rb", stdin));
  RunResult run{lx_test::RunCommandLineHere(line), {}, {}};
  const Files after = Look();
  for (const auto& [name, bytes] : after) {
    if (!before_.contains(name)) {
      run.made.push_back(name);
    }
  }
  for (const auto& [name, bytes] : before_) {
    const auto now = after.find(name);
    if (now == after.end() || now->second != bytes) {
      run.changed.push_back(name);
    }
  }
  return run;
}

void RunFolder::Restore() {
  const Files now = Look();
  for (const auto& [name, bytes] : now) {
    if (!kept_.contains(name)) {
      fs::remove(folder_ / name);
    }
  }
  for (const auto& [name, bytes] : kept_) {
    const auto found = now.find(name);
    if (found == now.end() || found->second != bytes) {
      WriteBytes(folder_ / name, bytes);
    }
  }
  before_ = kept_;
}

bool RunFolder::IsLeftAlone() const { return around_.FileCount() == 1; }

}  // namespace mutations
