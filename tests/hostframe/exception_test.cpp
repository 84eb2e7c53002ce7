// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <string>

#include "hostframe/interfaces/recoverable.h"
#include "hostframe/interfaces/wide_format.h"

namespace {

using quantel::cRecoverable;

TEST(Recoverable, HoldsMagicFileLineAndMessage) {
  const cRecoverable fault("some_file", 77, u"text %s and %c", u"inner", u'x');

  EXPECT_EQ(0xFEE1BADDU, fault.magic());
  EXPECT_EQ(u"some_file", fault.file());
  EXPECT_EQ(77U, fault.line());
  EXPECT_EQ(u"text inner and x", fault.message());
}

TEST(Recoverable, IsCopiedWithItsMagic) {
  const quantel::cNotFound fault("f", 1, u"m");
  const quantel::cNotFound copy = fault;  // NOLINT(performance-unnecessary-copy-initialization)

  EXPECT_EQ(0xFEE1BADDU, copy.magic());
  EXPECT_EQ(u"f", copy.file());
  EXPECT_EQ(1U, copy.line());
  EXPECT_EQ(u"m", copy.message());
}

template <class Kind>
void ExpectCaughtAsBase() {
  try {
    throw Kind("f", 1, u"m");
  } catch (const cRecoverable& fault) {
    EXPECT_EQ(u"m", fault.message());
    EXPECT_EQ(sizeof(cRecoverable), sizeof(Kind));
  }
}

TEST(Recoverable, IsTheBaseOfItsThreeKindsWhichAddNothing) {
  ExpectCaughtAsBase<quantel::cBadFormat>();
  ExpectCaughtAsBase<quantel::cNotFound>();
  ExpectCaughtAsBase<quantel::cNotSupported>();
}

TEST(Recoverable, CutsAMessageAt511Characters) {
  const std::u16string text(600, u'a');

  EXPECT_EQ(std::u16string(511, u'a'), cRecoverable("f", 1, u"%s", text).message());
  EXPECT_EQ(511U, cRecoverable("f", 1, text).message().size());
}

TEST(Recoverable, GivesItsMessageAsACopy) {
  const cRecoverable fault("f", 1, u"m");
  quantel::wstring copy = fault.message();
  copy += u"more";

  EXPECT_EQ(u"m", fault.message());
}

TEST(WideFormat, FillsInWhatItIsGivenAndNothingElse) {
  using quantel::FormatWide;
  EXPECT_EQ(u"a 12 % b", FormatWide(100, u"a %d %% %s", {12, u"b"}));
  EXPECT_EQ(u"ab", FormatWide(100, u"a%sb", {}));
  EXPECT_EQ(u"100%", FormatWide(100, u"100%", {}));
  EXPECT_EQ(u"", FormatWide(100, u"%s", {7}));  // a number is no text
}

TEST(WideFormat, ReadsBytesInPairsLowByteFirst) {
  using quantel::BytePairs;
  EXPECT_EQ(u"\x4241\x4443", quantel::FormatWide(100, u"%s", {BytePairs{"ABCD"}}));
  EXPECT_EQ(u"\x4241\x0043", quantel::FormatWide(100, u"%s", {BytePairs{"ABC"}}));
  EXPECT_EQ(u"", quantel::FormatWide(100, u"%s", {BytePairs{""}}));
}

}  // namespace
