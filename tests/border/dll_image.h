// SPDX-License-Identifier: BSD-3-Clause
// A DLL's own tables, read from where the system has mapped it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace lx_test {

class DllImage {
 public:
  // Loads the file for the length of the scope.
  explicit DllImage(const char* file);
  ~DllImage();
  DllImage(const DllImage&) = delete;
  DllImage& operator=(const DllImage&) = delete;

  std::vector<std::string> Exports() const;            // by name, in alphabetical order
  std::vector<std::string> ImportedLibraries() const;  // in the order of the table

  // Where the DLL keeps the address of a function that it imports, to be called through. Null
  // where it imports no function of that name. What stands there may be write-protected.
  void** ImportSlot(const std::string& function) const;

 private:
  template <class Record>
  Record* At(std::size_t offset) const {
    return reinterpret_cast<Record*>(base_ + offset);
  }
  // What one entry of the header's directory points to; null for an absent one.
  template <class Record>
  Record* Table(std::size_t entry) const;

  char* base_;
};

}  // namespace lx_test
