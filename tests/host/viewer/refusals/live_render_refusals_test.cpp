// SPDX-License-Identifier: BSD-3-Clause
// A live render whose requests for memory are refused says so, or has the right frame; and it goes
// on.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "host/looks/keys.h"
#include "host/module/module_choice.h"
#include "host/viewer/live/live_render.h"
#include "tests/host/viewer/refusals/each_refused.h"
#include "tests/host/viewer/shut_stream.h"

namespace glimmerhost {
namespace {

const std::string kFastModule = std::string(MODULE_FOLDER) + "/fast/" + MODULE_NAME;

// A light in the middle, opaque.
std::shared_ptr<const LoadedFrame> Light(bool ofFloats) {
  auto picture = std::make_shared<Picture>();
  picture->width = 32;
  picture->height = 16;
  const std::size_t count = picture->PixelCount() * 4;
  const std::size_t middle = count / 2 + 64;
  if (ofFloats) {
    picture->floats.assign(count, 0.25F);
    picture->floats[middle] = 4.0F;
  } else {
    picture->samples.assign(count, 65535);
    picture->samples[middle] = 1000;
  }
  auto loaded = std::make_shared<LoadedFrame>();
  if (!ofFloats) {
    loaded->source = quantel::cPtr<FrameImage>(new FrameImage(*picture));
  }
  loaded->picture = std::move(picture);
  return loaded;
}

// A module that cannot take its aperture's picture keeps the two that it has by then.
constexpr long kModuleKeeps = 2;

class RefusedRenders : public testing::TestWithParam<bool> {
 public:
  RefusedRenders()
      : module(std::make_shared<const EffectModule>(
            ModuleChoice{kFastModule, lx::FindFootprint("fast")}, nullptr)),
        frame(Light(GetParam())) {
    request = {1, frame, Page::Load(PAGE).Defaults(), 0.5, false};
    request.values[kRadiusXKey] = 0.2;
  }

  void Start(double handSeconds = kHandSeconds) {
    rings = std::make_unique<viewer_test::Count>();
    asked = 0;
    live = std::make_unique<LiveRender>(
        module, [rung = rings.get()] { rung->Add(); }, handSeconds);
  }

  RenderedFrame Get(const RenderRequest& wanted) {
    live->Ask(wanted);
    rings->WaitFor(++asked);
    return live->Take().value();
  }

  // The same, with a request for memory refused; none where it could not be asked.
  std::optional<RenderedFrame> GetRefused(long n, const RenderRequest& wanted, bool* wasRefused) {
    const lx_test::RefusedNew refused(n);
    std::optional<RenderedFrame> rendered;
    try {
      live->Ask(wanted);
      rings->WaitFor(++asked);
      rendered = live->Take();
    } catch (const std::bad_alloc&) {
    }
    *wasRefused = refused.WasRefused();
    return rendered;
  }

  static bool IsSame(const Picture& a, const Picture& b) {
    return a.samples == b.samples && a.floats == b.floats;
  }

  std::shared_ptr<const EffectModule> module;
  std::shared_ptr<const LoadedFrame> frame;
  RenderRequest request;
  std::unique_ptr<viewer_test::Count> rings;
  std::unique_ptr<LiveRender> live;
  int asked = 0;
};

TEST_P(RefusedRenders, AreFaultsAndTheNextOnesAreMade) {
  Start();
  const std::shared_ptr<const Picture> expected = Get(request).picture;
  ASSERT_TRUE(expected);
  live.reset();
  long failed = 0;

  const long count = viewer_test::RefuseEach(
      [&](long n) {
        Start();
        bool wasRefused = false;
        const auto rendered = GetRefused(n, request, &wasRefused);
        if (rendered && rendered->picture) {
          EXPECT_TRUE(IsSame(*expected, *rendered->picture)) << n;
          EXPECT_EQ("", rendered->fault) << n;
        } else if (rendered) {
          EXPECT_NE("", rendered->fault) << n;
          ++failed;
        }
        const RenderedFrame next = Get(request);
        EXPECT_TRUE(next.picture && IsSame(*expected, *next.picture)) << n << ": " << next.fault;
        live.reset();
        return wasRefused;
      },
      GetParam() ? 0 : kModuleKeeps);
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(failed, 10);
}

// Of a machine whose pace is known, so that there is a proxy.
TEST_P(RefusedRenders, OfProxiesAreFaultsAndTheNextOnesAreMade) {
  RenderRequest proxy = request;
  proxy.mayBeProxy = true;
  long made = 0;
  const long count = viewer_test::RefuseEach(
      [&](long n) {
        Start(1e-9);
        Get(request);
        bool wasRefused = false;
        {
          const auto rendered = GetRefused(n, proxy, &wasRefused);
          if (rendered && rendered->picture) {
            EXPECT_TRUE(rendered->isProxy) << n;
            EXPECT_LT(rendered->picture->width, 32) << n;
            ++made;
          } else if (rendered) {
            EXPECT_NE("", rendered->fault) << n;
          }
        }
        EXPECT_TRUE(Get(proxy).isProxy) << n;
        EXPECT_TRUE(Get(request).picture) << n;
        live.reset();
        return wasRefused;
      },
      GetParam() ? 0 : kModuleKeeps);
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(made, 0);
}

// Why a frame cannot be is told, though that takes memory, too.
TEST_P(RefusedRenders, TellWhyAFrameCannotBeOrThatThereIsNoMemory) {
  RenderRequest tooLarge = request;
  tooLarge.values[kRadiusXKey] = 1e9;
  const long count = viewer_test::RefuseEach([&](long n) {
    Start();
    bool wasRefused = false;
    const auto rendered = GetRefused(n, tooLarge, &wasRefused);
    if (rendered) {
      EXPECT_TRUE(!rendered->picture && !rendered->fault.empty()) << n;
    }
    EXPECT_TRUE(Get(request).picture) << n;
    live.reset();
    return wasRefused;
  });
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(count, 3);
}

// A thread that could not be replaced is there still.
TEST_P(RefusedRenders, StartAnewOrStayWhereTheyCannot) {
  const long count = viewer_test::RefuseEach([&](long n) {
    bool wasRefused = false;
    Start();
    {
      const lx_test::RefusedNew refused(n);
      try {
        live->Abandon();
      } catch (const std::bad_alloc&) {
      }
      wasRefused = refused.WasRefused();
    }
    EXPECT_EQ(0, live->Hanging()) << n;
    EXPECT_TRUE(Get(request).picture) << n;
    live.reset();
    return wasRefused;
  });
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(count, 3);
}

// Who looked at a picture last mostly is the window's thread, which must not fail there.
TEST_P(RefusedRenders, AreLetGoOfWithoutMemory) {
  Start();
  RenderedFrame rendered = Get(request);
  {
    const lx_test::RefusedNew refused(1);
    rendered.picture.reset();
    EXPECT_FALSE(refused.WasRefused());
  }
  live.reset();
}

INSTANTIATE_TEST_SUITE_P(Of, RefusedRenders, testing::Bool(), [](const auto& kind) {
  return std::string(kind.param ? "Floats" : "Words");
});

}  // namespace
}  // namespace glimmerhost
