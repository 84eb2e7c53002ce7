// SPDX-License-Identifier: BSD-3-Clause
// What the targets have in common: a folder of their own, and what counts as a clean end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace fuzz {

// The one folder that a target writes to, gone with the process.
inline const std::filesystem::path& Folder() {
  static const lx_test::ScratchFolder folder;
  return folder.Path();
}

// Puts the bytes into a file of that folder, and returns its place.
inline std::filesystem::path Put(const std::string& name, const std::uint8_t* bytes,
                                 std::size_t size) {
  const std::filesystem::path file = Folder() / name;
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
  return file;
}

inline std::string Text(const std::uint8_t* bytes, std::size_t size) {
  return {reinterpret_cast<const char*>(bytes), size};
}

// A refusal is a clean end; whatever else is thrown is a fault.
template <class Work>
void ReadOrRefuse(const Work& work) {
  try {
    work();
  } catch (const glimmerhost::Failure&) {
  } catch (const glimmerhost::UsageError&) {
  }
}

}  // namespace fuzz
