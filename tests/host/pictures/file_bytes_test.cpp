// SPDX-License-Identifier: BSD-3-Clause
// The bytes of a file, as libraries written in C move about in it.
#include "host/pictures/file_bytes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ios>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::FileBytes;
using glimmerhost::FileUse;

std::string Take(FileBytes* bytes, std::size_t count) {
  std::string text(count, '?');
  text.resize(bytes->Read(text.data(), count));
  return text;
}

void Put(FileBytes* bytes, const std::string& text) {
  EXPECT_EQ(text.size(), bytes->Write(text.data(), text.size()));
}

TEST(FileBytes, KeepsWhatIsWrittenAndReadByTurnsAtOnePlace) {
  const lx_test::ScratchFolder folder;
  FileBytes bytes(folder / "a", FileUse::kMake);
  Put(&bytes, "0123456789");

  EXPECT_EQ(2, bytes.Seek(2, std::ios_base::beg));
  EXPECT_EQ("23", Take(&bytes, 2));
  EXPECT_EQ(4, bytes.Seek(4, std::ios_base::beg));
  Put(&bytes, "ab");
  EXPECT_EQ(6, bytes.Seek(6, std::ios_base::beg));
  EXPECT_EQ("67", Take(&bytes, 2));
  EXPECT_EQ(0, bytes.Seek(0, std::ios_base::beg));
  EXPECT_EQ("0123ab6789", Take(&bytes, 100));
  EXPECT_FALSE(bytes.IsRefused());
  EXPECT_TRUE(bytes.Close());
}

TEST(FileBytes, KnowsItsPlaceFromEveryStart) {
  const lx_test::ScratchFolder folder;
  FileBytes bytes(folder / "a", FileUse::kMake);
  EXPECT_EQ(0, bytes.Seek(0, std::ios_base::end));
  Put(&bytes, std::string(100000, 'x'));
  EXPECT_EQ(100000, bytes.Seek(0, std::ios_base::end));
  EXPECT_EQ(99990, bytes.Seek(-10, std::ios_base::end));
  EXPECT_EQ(100000, bytes.Seek(0, std::ios_base::end));
  EXPECT_EQ(100000, bytes.Seek(0, std::ios_base::cur));
  EXPECT_EQ(10, bytes.Seek(10, std::ios_base::beg));
  Put(&bytes, "y");
  EXPECT_EQ(99990, bytes.Seek(-10, std::ios_base::end));
  EXPECT_EQ(99995, bytes.Seek(5, std::ios_base::cur));
  EXPECT_EQ(100000, bytes.Seek(0, std::ios_base::end));
  Put(&bytes, "z");
  EXPECT_EQ(100001, bytes.Seek(0, std::ios_base::end));
  EXPECT_TRUE(bytes.Close());

  FileBytes again(folder / "a", FileUse::kRead);
  EXPECT_EQ(100001, again.Seek(0, std::ios_base::end));
  EXPECT_EQ(9, again.Seek(9, std::ios_base::beg));
  EXPECT_EQ("xyx", Take(&again, 3));
  EXPECT_EQ(12, again.Seek(0, std::ios_base::cur));
  EXPECT_EQ(-1, again.Seek(-1, std::ios_base::beg));
  EXPECT_TRUE(again.IsRefused());
}

}  // namespace
