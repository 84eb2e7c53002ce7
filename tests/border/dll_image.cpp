// SPDX-License-Identifier: BSD-3-Clause
#include "tests/border/dll_image.h"

#include <gtest/gtest.h>

#include "tests/support/shared_library.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace lx_test {

DllImage::DllImage(const char* file) : base_(static_cast<char*>(OpenLibrary(file))) {
  EXPECT_NE(nullptr, base_) << file << ": " << LibraryError();
}

DllImage::~DllImage() { CloseLibrary(base_); }

template <class Record>
Record* DllImage::Table(std::size_t entry) const {
  const auto* dos = At<IMAGE_DOS_HEADER>(0);
  const auto* headers = At<IMAGE_NT_HEADERS64>(static_cast<std::size_t>(dos->e_lfanew));
  const IMAGE_DATA_DIRECTORY& table = headers->OptionalHeader.DataDirectory[entry];
  return table.Size == 0 ? nullptr : At<Record>(table.VirtualAddress);
}

std::vector<std::string> DllImage::Exports() const {
  std::vector<std::string> names;
  const auto* exports = Table<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
  // A function without a name would be an export too.
  EXPECT_EQ(exports->NumberOfNames, exports->NumberOfFunctions);
  const auto* offsets = At<DWORD>(exports->AddressOfNames);
  for (DWORD i = 0; i < exports->NumberOfNames; ++i) {
    names.emplace_back(At<char>(offsets[i]));
  }
  return names;
}

std::vector<std::string> DllImage::ImportedLibraries() const {
  std::vector<std::string> names;
  for (const auto* library = Table<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
       library->Name != 0; ++library) {
    names.emplace_back(At<char>(library->Name));
  }
  return names;
}

void** DllImage::ImportSlot(const std::string& function) const {
  for (const auto* library = Table<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
       library->Name != 0; ++library) {
    const auto* names = At<IMAGE_THUNK_DATA64>(library->OriginalFirstThunk);
    auto* slots = At<void*>(library->FirstThunk);
    for (std::size_t i = 0; names[i].u1.AddressOfData != 0; ++i) {
      if (!IMAGE_SNAP_BY_ORDINAL64(names[i].u1.Ordinal) &&
          function == At<IMAGE_IMPORT_BY_NAME>(names[i].u1.AddressOfData)->Name) {
        return slots + i;
      }
    }
  }
  return nullptr;
}

}  // namespace lx_test
