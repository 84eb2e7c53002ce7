// What the platform does with processors, devices and modes that only a POSIX system has.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>

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

// A library that the test program does not use by itself, so that nothing else keeps it.
TEST(PosixLibrary, StaysAfterItsLastUserIsGoneWhereItIsToBeKept) {
  constexpr const char* kFile = "libfftw3.so.3";
  void* library = dlopen(kFile, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    GTEST_SKIP() << "there is no " << kFile;
  }
  const auto function = reinterpret_cast<void (*)()>(dlsym(library, "fftw_cleanup"));

  EXPECT_TRUE(lx::SystemPlatform().keepLoaded(function));
  dlclose(library);

  EXPECT_NE(nullptr, dlopen(kFile, RTLD_NOW | RTLD_NOLOAD));
}

void OfThisModule() {}

TEST(PosixLibrary, IsNotKeptWhereItIsTheModuleItself) {
  EXPECT_FALSE(lx::SystemPlatform().keepLoaded(OfThisModule));
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
