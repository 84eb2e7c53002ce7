// SPDX-License-Identifier: BSD-3-Clause
// What the platform does with processors, devices and modes that only a POSIX system has.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "baselib/platform/platform.h"
#include "baselib/threads/system_info.h"
#include "baselib/utils/paths.h"
#include "tests/support/scratch_folder.h"

namespace {

TEST(ProcessorCount, FollowsTheAffinityOfTheProcess) {
  cpu_set_t before;
  ASSERT_EQ(0, sched_getaffinity(0, sizeof before, &before));
  int first = 0;
  while (!CPU_ISSET(first, &before)) {
    ++first;
  }
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(first, &one);

  sched_setaffinity(0, sizeof one, &one);
  const std::uint32_t narrowed = lx::get_processor_count();
  sched_setaffinity(0, sizeof before, &before);

  EXPECT_EQ(1U, narrowed);
  EXPECT_EQ(static_cast<std::uint32_t>(CPU_COUNT(&before)), lx::get_processor_count());
}

// What the system says of the mapping that an address is in; empty where it says nothing.
std::string FlagsOfMapping(const void* address) {
  std::ifstream maps("/proc/self/smaps");
  const auto wanted = reinterpret_cast<std::uintptr_t>(address);
  bool inside = false;
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t from = 0;
    std::uintptr_t to = 0;
    char dash = 0;
    std::istringstream words(line);
    if (words >> std::hex >> from >> dash >> to && dash == '-') {
      inside = from <= wanted && wanted < to;
    } else if (inside && line.starts_with("VmFlags:")) {
      return line + ' ';
    }
  }
  return "";
}

// Some pages of memory that nothing else has.
class PosixPages : public testing::Test {
 protected:
  PosixPages()
      : pages(static_cast<char*>(mmap(nullptr, kCount * page, PROT_READ | PROT_WRITE,
                                      MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {}
  ~PosixPages() override { munmap(pages, kCount * page); }

  bool IsAdvised(std::size_t index) const {
    return FlagsOfMapping(pages + index * page).find(" hg ") != std::string::npos;
  }

  static constexpr std::size_t kCount = 8;
  const std::size_t page = static_cast<std::size_t>(lx::SystemPlatform().pageSize());
  char* const pages;
};

TEST_F(PosixPages, AreAdvisedWhereTheyAreWhollyInsideOfABlock) {
  if (FlagsOfMapping(pages).empty() ||
      !std::filesystem::exists("/sys/kernel/mm/transparent_hugepage")) {
    GTEST_SKIP() << "the system does not tell";
  }

  lx::SystemPlatform().adviseHugePages(pages + page + 64, 4 * page);

  for (std::size_t i = 0; i < kCount; ++i) {
    EXPECT_EQ(i >= 2 && i <= 4, IsAdvised(i)) << i;
  }
}

TEST(PosixMemory, LeavesTheLastErrorWhereHugePagesCannotBeAdvised) {
  constexpr std::size_t kBytes = 0x10000;
  void* gone = mmap(nullptr, kBytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  munmap(gone, kBytes);
  errno = EBADF;

  lx::SystemPlatform().adviseHugePages(gone, kBytes);

  EXPECT_EQ(EBADF, errno);
}

TEST(PosixFile, SaysAtTheEndThatAFullDiskLostSomething) {
  std::FILE* file = lx::SystemPlatform().openFile("/dev/full", "w");
  if (file == nullptr) {
    GTEST_SKIP() << "no disk here is always full";
  }
  std::fputs("x", file);

  EXPECT_FALSE(lx::SystemPlatform().closeFile(file));
}

class PosixFolder : public testing::Test {
 public:
  lx_test::ScratchFolder folder;
  const std::filesystem::path path = folder.Path();
};

TEST_F(PosixFolder, GivesItsOwnerTheBitsForReadingAndWriting) {
  ASSERT_EQ(0, chmod(path.c_str(), 0100));
  EXPECT_TRUE(lx::set_file_writable(path.c_str(), true));

  struct stat status;
  ASSERT_EQ(0, stat(path.c_str(), &status));
  EXPECT_EQ(0700U, status.st_mode & 0777U);
}

TEST_F(PosixFolder, LosesAllWriteBitsAndNoOthers) {
  ASSERT_EQ(0, chmod(path.c_str(), 0777));
  EXPECT_TRUE(lx::set_file_writable(path.c_str(), false));

  struct stat status;
  ASSERT_EQ(0, stat(path.c_str(), &status));
  EXPECT_EQ(0555U, status.st_mode & 0777U);
  EXPECT_TRUE(lx::set_file_writable(path.c_str(), true));
}

}  // namespace
