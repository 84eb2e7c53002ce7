// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/interfaces/guid.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "hostframe/interfaces/class_info.h"
#include "hostframe/module_statics.h"

namespace {

using quantel::cGuid;
using Tail = std::array<std::uint8_t, 8>;

void ExpectGuid(const cGuid& guid, std::uint32_t g1, int g2, int g3, Tail tail) {
  EXPECT_EQ(g1, guid.group1);
  EXPECT_EQ(g2, guid.group2);
  EXPECT_EQ(g3, guid.group3);
  EXPECT_EQ(tail, guid.tail);
}

TEST(Guid, HoldsTheGroupsAndTheTailInTheOrderOfTheText) {
  ExpectGuid(allplugins::uiInterfaceGuid, 0x260FF26F, 0xE1F4, 0x4EA4,
             {0xAB, 0x7A, 0xF9, 0x0E, 0x7B, 0x6D, 0x3F, 0xB4});
  ExpectGuid(allplugins::renderInterfaceGuid, 0x80B61315, 0x269F, 0x4AC2,
             {0x9C, 0xF6, 0xCF, 0x54, 0x77, 0xED, 0x5C, 0xD8});
  ExpectGuid(allplugins::utilityInterfaceGuid, 0xCE283CB6, 0x2762, 0x4977,
             {0xB2, 0xA4, 0xC1, 0xCE, 0xA0, 0xB9, 0xFC, 0x84});
  ExpectGuid(allplugins::uiClassGuid, 0x2FD3AFEC, 0xCDAB, 0x453D,
             {0x9E, 0x3A, 0xF3, 0xE6, 0xDD, 0xA0, 0x3F, 0x08});
  ExpectGuid(allplugins::renderClassGuid, 0x1FD3AFEC, 0xCDAB, 0x453D,
             {0x9E, 0x3A, 0xF3, 0xE6, 0xDD, 0xA0, 0x3F, 0x08});
  ExpectGuid(quantel::cClassInfo<qplugin::iQplugin>().guid(), 0x2838A6F4, 0x9B0E, 0x4477,
             {0xA3, 0x2E, 0x73, 0x7E, 0xAD, 0x42, 0xD1, 0x67});
}

TEST(Guid, TakesSevenDigitsInTheFirstGroup) {
  const cGuid guid = quantel::cClassInfo<quantel::iFactory::iInstance>().guid();

  ExpectGuid(guid, 0x08218E69, 0xD1F2, 0x4B4B, {0x87, 0xC4, 0x20, 0xF2, 0xD0, 0x1F, 0x9C, 0x08});
  EXPECT_EQ(u"iInstance", guid.text);
}

TEST(Guid, KeepsTheTextBehindTheSlashes) {
  EXPECT_EQ(u"Qplugin GUI Interface", allplugins::uiInterfaceGuid.text);
  EXPECT_EQ(u"x", cGuid(u"{1-2-3-4-5} // \t \tx").text);
  EXPECT_EQ(u"x", cGuid(u"{1-2-3-4-5}/?x").text);  // the second character is not looked at
  EXPECT_EQ(u"", cGuid(u"{1-2-3-4-5} text").text);
}

TEST(Guid, StaysInsideAStringThatEndsEarly) {
  EXPECT_EQ(u"", cGuid(u"{1-2-3-4-5}/").text);
  EXPECT_EQ(u"", cGuid(u"{1-2-3-4-5}//").text);
  const cGuid cut(u"{12345678");
  ExpectGuid(cut, 0x12345678, 0, 0, {});
  EXPECT_EQ(u"", cut.text);
  ExpectGuid(cGuid(u"{12-34"), 0x12, 0x34, 0, {});
}

TEST(Guid, EndsAtTheFirstNulOfAString) {
  const quantel::wstring text(u"{1-2-3-4-5} // ab\0cd", 20);

  EXPECT_EQ(u"ab", cGuid(text).text);
}

TEST(Guid, TakesLowerAndUpperCaseDigitsAsEqual) {
  const cGuid lower(u"{abcdef01-cdab-453d-9e3a-f3e6dda03f08}");
  const cGuid upper(u"{ABCDEF01-CDAB-453D-9E3A-F3E6DDA03F08}");

  EXPECT_EQ(upper.group1, lower.group1);
  EXPECT_EQ(upper.group3, lower.group3);
  EXPECT_EQ(upper.tail, lower.tail);
}

TEST(Guid, TakesAnyCharacterBetweenGroups) {
  ExpectGuid(cGuid(u"1x2y3z4/56789ABCDEF0"), 1, 2, 3, {0, 4, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0});
}

TEST(Guid, RefusesAStringWithoutADigit) {
  for (const char16_t* string : {u"", u"{---} // "}) {
    try {
      const cGuid guid(string);
      FAIL();
    } catch (const quantel::cBadFormat& fault) {
      EXPECT_EQ(u"Tried to construct a cGuid from string \"\" (End reach before hex digit found)",
                fault.message());
      EXPECT_EQ(u"cGuid", fault.file());
      EXPECT_EQ(394U, fault.line());
    }
  }
}

TEST(Guid, ConvertsNoOtherCharacterThanADigit) {
  EXPECT_EQ(0U, cGuid::HexValue(u'0'));
  EXPECT_EQ(15U, cGuid::HexValue(u'F'));
  EXPECT_EQ(10U, cGuid::HexValue(u'a'));
  try {
    cGuid::HexValue(u'g');
    FAIL();
  } catch (const quantel::cBadFormat& fault) {
    EXPECT_EQ(274U, fault.line());
    EXPECT_EQ(u"Expected hex char (\"g\")", fault.message());
  }
}

}  // namespace
