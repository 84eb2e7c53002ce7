// SPDX-License-Identifier: BSD-3-Clause
// A small bounded formatter for 16-bit text.
//
// Conversions: %s takes text, %c one character, %d an int, %% is a percent sign.
// A conversion without an argument, or with one of another kind, gives nothing.
// The result is cut at the given length; nothing is ever written past it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "hostframe/interfaces/wide_text.h"

namespace quantel {

// Single-byte text under a wide %s. Its bytes are taken in pairs, low byte first, up
// to the first pair of zeros; two zero bytes stand behind the text.
struct BytePairs {
  std::string_view bytes;
};

// One argument of FormatWide. Text is borrowed for the length of the call.
class WideArgument {
 public:
  // NOLINTBEGIN(google-explicit-constructor): arguments convert by themselves
  WideArgument(std::u16string_view text) : kind_(Kind::kText), text_(text) {}
  WideArgument(const wstring& text) : kind_(Kind::kText), text_(text) {}
  WideArgument(const char16_t* text) : kind_(Kind::kText), text_(text) {}
  WideArgument(char16_t character) : kind_(Kind::kCharacter), character_(character) {}
  WideArgument(int number) : kind_(Kind::kNumber), number_(number) {}
  WideArgument(BytePairs pairs) : kind_(Kind::kBytePairs), bytes_(pairs.bytes) {}
  // NOLINTEND(google-explicit-constructor)

  // Appends the argument as the conversion letter asks for it.
  void AppendTo(wstring& out, char16_t letter) const {
    if (letter == u's' && kind_ == Kind::kText) {
      out.append(text_);
    } else if (letter == u's' && kind_ == Kind::kBytePairs) {
      AppendPairs(out);
    } else if (letter == u'c' && kind_ == Kind::kCharacter) {
      out.push_back(character_);
    } else if (letter == u'd' && kind_ == Kind::kNumber) {
      for (const char digit : std::to_string(number_)) {
        out.push_back(static_cast<char16_t>(digit));
      }
    }
  }

 private:
  enum class Kind { kText, kCharacter, kNumber, kBytePairs };

  // An odd last byte pairs with the first of the two zero bytes behind the text.
  void AppendPairs(wstring& out) const {
    for (std::size_t i = 0; i < bytes_.size(); i += 2) {
      const unsigned low = static_cast<unsigned char>(bytes_[i]);
      const unsigned high = i + 1 < bytes_.size() ? static_cast<unsigned char>(bytes_[i + 1]) : 0U;
      if (low == 0 && high == 0) {
        return;
      }
      out.push_back(static_cast<char16_t>(low | (high << 8U)));
    }
  }

  Kind kind_;
  std::u16string_view text_;
  std::string_view bytes_;
  char16_t character_ = 0;
  int number_ = 0;
};

// format with its arguments filled in, in order.
//   maxLength  most characters of the result; what lies beyond is cut
inline wstring FormatWide(std::size_t maxLength, std::u16string_view format,
                          std::initializer_list<WideArgument> arguments) {
  wstring out;
  const auto* next = arguments.begin();
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != u'%' || i + 1 == format.size()) {
      out.push_back(format[i]);
      continue;
    }
    const char16_t letter = format[++i];
    if (letter == u'%') {
      out.push_back(letter);
    } else if (next != arguments.end()) {
      next->AppendTo(out, letter);
      ++next;
    }
  }
  if (out.size() > maxLength) {
    out.resize(maxLength);
  }
  return out;
}

}  // namespace quantel
