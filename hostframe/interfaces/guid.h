// SPDX-License-Identifier: BSD-3-Clause
// cGuid: a 128-bit identity with a descriptive text, parsed from one wide string.
//
//   {260FF26F-E1F4-4EA4-AB7A-F90E7B6D3FB4} // Qplugin GUI Interface
//    group1   g2   g3   -- tail, 8 bytes --    text
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "hostframe/interfaces/recoverable.h"
#include "hostframe/interfaces/visibility.h"
#include "hostframe/interfaces/wide_text.h"

namespace quantel {

class QTL_BORDER cGuid {
 public:
  // Parses the string, up to its first NUL. Lower and upper case digits are equal, a
  // short group is accepted, and what stands between the groups is not looked at.
  // Throws cBadFormat if there is no hexadecimal digit at all.
  explicit cGuid(const char16_t* string) : cGuid(std::u16string_view(string)) {}
  explicit cGuid(const wstring& string) : cGuid(std::u16string_view(string)) {}
  explicit cGuid(std::u16string_view string) {
    try {
      Parse(string.substr(0, string.find(u'\0')));
    } catch (const cRecoverable& fault) {
      // Intended: the first %s is this object's own text, which is still empty, and
      // not the string that failed.
      throw cBadFormat("cGuid", 394, u"Tried to construct a cGuid from string \"%s\" (%s)", text,
                       fault.message());
    }
  }

  // The value of one hexadecimal digit. Throws cBadFormat on any other character.
  static std::uint32_t HexValue(char16_t c) {
    if (c >= u'0' && c <= u'9') {
      return static_cast<std::uint32_t>(c - u'0');
    }
    if (c >= u'a' && c <= u'f') {
      return static_cast<std::uint32_t>(c - u'a' + 10);
    }
    if (c >= u'A' && c <= u'F') {
      return static_cast<std::uint32_t>(c - u'A' + 10);
    }
    throw cBadFormat("cGuid", 274, u"Expected hex char (\"%c\")", c);
  }

  std::uint32_t group1 = 0;
  std::uint16_t group2 = 0;
  std::uint16_t group3 = 0;
  std::array<std::uint8_t, 8> tail{};  // fourth and fifth group, in the order of the string
  wstring text;                        // what follows the two slashes; may be empty

 private:
  static bool IsHex(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
  }

  // A cursor that stays at the end of the string, where digits and skips stop.
  struct Cursor {
    std::u16string_view rest;

    bool AtEnd() const { return rest.empty(); }
    char16_t Peek() const { return rest.front(); }
    void Skip() { rest.remove_prefix(rest.empty() ? 0 : 1); }
    std::uint32_t Digits(int most) {
      std::uint32_t value = 0;
      for (; most > 0 && !AtEnd() && IsHex(Peek()); --most) {
        value = value * 16 + HexValue(Peek());
        Skip();
      }
      return value;
    }
  };

  void Parse(std::u16string_view string) {
    Cursor cursor{string};
    while (!cursor.AtEnd() && !IsHex(cursor.Peek())) {
      cursor.Skip();
    }
    if (cursor.AtEnd()) {
      throw cNotFound("cGuid", 293, u"End reach before hex digit found");
    }
    group1 = cursor.Digits(8);
    cursor.Skip();
    group2 = static_cast<std::uint16_t>(cursor.Digits(4));
    cursor.Skip();
    group3 = static_cast<std::uint16_t>(cursor.Digits(4));
    cursor.Skip();
    for (std::size_t pair = 0; pair < tail.size() / 2; ++pair) {
      const std::uint32_t value = cursor.Digits(4);
      tail[2 * pair] = static_cast<std::uint8_t>(value >> 8U);
      tail[2 * pair + 1] = static_cast<std::uint8_t>(value & 0xFFU);
      if (pair == 0) {
        cursor.Skip();  // between the fourth and the fifth group
      }
    }
    while (!cursor.AtEnd() && cursor.Peek() != u'/') {
      cursor.Skip();
    }
    cursor.Skip();
    cursor.Skip();  // Intended: the character behind the first slash is not looked at.
    while (!cursor.AtEnd() && (cursor.Peek() == u' ' || cursor.Peek() == u'\t')) {
      cursor.Skip();
    }
    text.assign(cursor.rest);
  }
};

}  // namespace quantel
