// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/interfaces/ptr.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "hostframe/interfaces/colour.h"
#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/geometry.h"

namespace {

using quantel::cPtr;
using quantel::cRefCount;

struct First {
  virtual ~First() = default;
};
struct Second {
  virtual ~Second() = default;
  virtual int Answer() = 0;
};
struct Unrelated {
  virtual ~Unrelated() = default;
};

struct Thing final : First, Second, cRefCount {
  explicit Thing(std::vector<std::string>* calls) : log(calls) {}
  ~Thing() override { log->emplace_back("~Thing"); }
  int Answer() override { return 42; }
  std::vector<std::string>* log;
};

class Ptr : public testing::Test {
 protected:
  cPtr<Thing> Make() { return cPtr<Thing>(new Thing(&log)); }
  std::vector<std::string> log;
};

TEST_F(Ptr, IsTwoWordsObjectThenCount) {
  const cPtr<First> p = Make();
  static_assert(sizeof(cPtr<First>) == 2 * sizeof(void*));
  void* words[2];
  std::memcpy(words, static_cast<const void*>(&p), sizeof words);

  EXPECT_EQ(p.Object(), words[0]);
  EXPECT_EQ(p.RefCount(), words[1]);
}

TEST_F(Ptr, HasBothWordsNullWithoutAnObject) {
  const cPtr<First> p;
  EXPECT_EQ(nullptr, p.Object());
  EXPECT_EQ(nullptr, p.RefCount());
  const cPtr<Thing> fromNull(static_cast<Thing*>(nullptr));
  EXPECT_EQ(nullptr, fromNull.RefCount());
}

TEST_F(Ptr, CountsFromZeroOverCopiesToOneDeletion) {
  auto* thing = new Thing(&log);
  EXPECT_EQ(0, thing->Count());
  {
    const cPtr<Thing> first(thing);
    EXPECT_EQ(1, thing->Count());
    {
      const cPtr<Thing> second = first;  // NOLINT(performance-unnecessary-copy-initialization)
      EXPECT_EQ(2, thing->Count());
    }
    EXPECT_EQ(1, thing->Count());
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(std::vector<std::string>{"~Thing"}, log);
}

TEST_F(Ptr, SurvivesAssignmentToItself) {
  cPtr<Thing> p = Make();
  cPtr<Thing>& same = p;

  p = same;

  EXPECT_EQ(1, p->Count());
  EXPECT_TRUE(log.empty());
}

TEST_F(Ptr, LetsTheOldObjectDieBeforeItTakesTheNew) {
  // The new one's count is looked at from the old one's destructor.
  static int seen;
  struct Old final : First, cRefCount {
    explicit Old(const cRefCount* count) : watched(count) {}
    ~Old() override { seen = watched->Count(); }
    const cRefCount* watched;
  };
  const cPtr<First> fresh = Make();
  cPtr<First> p(new Old(fresh.RefCount()));

  p = fresh;

  EXPECT_EQ(1, seen);
  EXPECT_EQ(2, fresh.RefCount()->Count());
}

TEST_F(Ptr, NeverReachesZeroBetweenTwoHoldersOfOneObject) {
  cPtr<Thing> a = Make();
  const cPtr<Thing> b = a;

  a = b;

  EXPECT_EQ(2, b->Count());
  EXPECT_TRUE(log.empty());
}

TEST_F(Ptr, ConvertsToALaterBaseAndIsDeletedFromThere) {
  cPtr<Second> second;
  {
    const cPtr<Thing> thing = Make();
    second = thing;
    EXPECT_EQ(thing.RefCount(), second.RefCount());
    EXPECT_EQ(static_cast<Second*>(thing.Object()), second.Object());
  }
  EXPECT_EQ(42, second->Answer());

  second.Reset();

  EXPECT_EQ(std::vector<std::string>{"~Thing"}, log);
}

TEST_F(Ptr, GivesBothWordsNullForACastThatFails) {
  const cPtr<First> first = Make();

  const cPtr<Unrelated> none = first.Dynamic<Unrelated>();
  const cPtr<Second> other = first.Dynamic<Second>();

  EXPECT_EQ(nullptr, none.Object());
  EXPECT_EQ(nullptr, none.RefCount());
  EXPECT_EQ(42, other->Answer());
  EXPECT_EQ(2, first.RefCount()->Count());
}

TEST_F(Ptr, CountsOnManyThreads) {
  const cPtr<Thing> thing = Make();
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&thing] {
      for (int i = 0; i < 5000; ++i) {
        const cPtr<First> copy = thing;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(1, thing->Count());
}

TEST(RefCount, IsOne32BitWord) { EXPECT_EQ(4U, sizeof(cRefCount)); }

TEST(BorderValues, HaveTheirSizesAndOrder) {
  EXPECT_EQ(8U, sizeof(quantel::cSize2));
  EXPECT_EQ(8U, sizeof(quantel::cPoint2));
  EXPECT_EQ(16U, sizeof(quantel::cRect4));
  EXPECT_EQ(20U, sizeof(quantel::cColour));
  const quantel::cSize2 size{1, 2};
  EXPECT_EQ(1, size.first);
  EXPECT_EQ(2, size.second);
}

TEST(Colour, AnswersItsComponentsInTheFirstThreeWords) {
  const quantel::cColour colour = quantel::cColour::fromRGB(0.25F, 0.5F, 1).toRGB();
  float components[3];
  std::memcpy(components, colour.words, sizeof components);

  EXPECT_EQ(0.25F, components[0]);
  EXPECT_EQ(0.5F, components[1]);
  EXPECT_EQ(1.0F, components[2]);
}

// Notes what its end does to registrar and constructor.
TEST(Registration, TakesItsClassOutBeforeItLetsGoOfConstructorAndRegistrar) {
  static std::vector<std::string> calls;
  calls.clear();
  struct Ctor final : quantel::iFactory::iConstructor, cRefCount {
    ~Ctor() override { calls.emplace_back("~constructor"); }
    cPtr<quantel::iFactory::iInstance> create() override { return {}; }
    [[noreturn]] cPtr<quantel::iFactory::iInstance> createWith() override { std::abort(); }
    cPtr<quantel::iFactory::iClassInfo> classInfo() override { return {}; }
  };
  struct Registrar final : quantel::iRegistrar, cRefCount {
    ~Registrar() override { calls.emplace_back("~registrar"); }
    void removeClass(cPtr<quantel::iFactory::iConstructor> constructor) override {
      calls.push_back("removeClass with " + std::to_string(constructor.RefCount()->Count()));
    }
  };
  cPtr<quantel::cRegistration> registration(new quantel::cRegistration(
      cPtr<quantel::iRegistrar>(new Registrar), cPtr<quantel::iFactory::iConstructor>(new Ctor)));

  registration.Reset();

  EXPECT_EQ((std::vector<std::string>{"removeClass with 2", "~constructor", "~registrar"}), calls);
}

}  // namespace
