// SPDX-License-Identifier: BSD-3-Clause
// What is opened while requests for memory are refused is all there, or a fault.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "host/viewer/clip/clip_opener.h"
#include "tests/host/viewer/refusals/each_refused.h"
#include "tests/host/viewer/shut_stream.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

class RefusedClips : public testing::Test {
 public:
  RefusedClips() { std::ofstream(folder / "other.png") << "not looked at"; }

  // A request of which the n-th one for memory is refused, and one behind it.
  //   expect  looks at what was opened without a fault
  template <class Expect>
  bool Open(const std::string& name, long n, const Expect& expect) const {
    bool wasRefused = false;
    viewer_test::Count rings;
    std::unique_ptr<ClipOpener> opener;
    std::optional<OpenedClip> opened;
    {
      const lx_test::RefusedNew refused(n);
      try {
        opener = std::make_unique<ClipOpener>([&rings] { rings.Add(); });
        opener->Ask(name);
        rings.WaitFor(1);
        opened = opener->Fetch();
        EXPECT_TRUE(opened) << n;
      } catch (const std::bad_alloc&) {
      }
      wasRefused = refused.WasRefused();
    }
    if (opened && opened->fault.empty()) {
      expect(*opened);
    } else if (opened) {
      EXPECT_EQ(nullptr, opened->clip) << n;
    }
    EXPECT_TRUE(wasRefused || opened) << n;
    if (opened) {
      opener->Ask(name);
      rings.WaitFor(2);
      expect(opener->Fetch().value());
    }
    return wasRefused;
  }

  lx_test::ScratchFolder folder;
};

// The C++ library's way through a folder ends the program where it has no memory: so no name here
// has a number.
TEST_F(RefusedClips, OfAFileHaveItOrAFault) {
  const std::string name = (folder / "other.png").string();
  const long count = viewer_test::RefuseEach([&](long n) {
    return Open(name, n, [&](const OpenedClip& opened) {
      ASSERT_NE(nullptr, opened.clip) << n << opened.fault;
      EXPECT_EQ(name, opened.clip->Input()) << n;
      EXPECT_EQ(std::vector<int>{1}, opened.clip->Frames()) << n;
    });
  });
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(count, 10);
}

TEST_F(RefusedClips, ThatAreNotThereAreFaultsAllTheSame) {
  const std::string name = (folder / "none.png").string();
  const long count = viewer_test::RefuseEach([&](long n) {
    return Open(name, n, [n](const OpenedClip& opened) {
      EXPECT_NE("", opened.fault) << n;
      EXPECT_EQ(nullptr, opened.clip) << n;
    });
  });
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(count, 10);
}

}  // namespace
}  // namespace glimmerhost
