// SPDX-License-Identifier: BSD-3-Clause
// The exceptions of the border: cRecoverable and its three kinds.
//
// They are thrown by value and caught by reference, on either side of the border.
#pragma once

#include <cstddef>
#include <cstdint>
#include <locale>
#include <string_view>

#include "hostframe/interfaces/visibility.h"
#include "hostframe/interfaces/wide_format.h"
#include "hostframe/interfaces/wide_text.h"

namespace quantel {

class QTL_BORDER cRecoverable {
 public:
  static constexpr std::uint32_t kMagic = 0xFEE1BADD;

  // Longest message; a longer one is cut.
  static constexpr std::size_t kMaxMessage = 511;

  //   file       single-byte source name
  //   line       source line
  //   format     wide format of FormatWide, with its arguments behind it
  template <class... Arguments>
  cRecoverable(std::string_view file, std::uint32_t line, std::u16string_view format,
               const Arguments&... arguments)
      : file_(Widen(file)),
        line_(line),
        message_(FormatWide(kMaxMessage, format, {WideArgument(arguments)...})) {}

  cRecoverable(const cRecoverable& other)
      : file_(other.file_), line_(other.line_), message_(other.message_) {}
  cRecoverable& operator=(const cRecoverable&) = default;
  virtual ~cRecoverable() = default;

  std::uint32_t magic() const { return magic_; }
  wstring file() const { return file_; }
  std::uint32_t line() const { return line_; }
  wstring message() const { return message_; }

 private:
  // No standard facet serves 16-bit characters, so the default locale's wide one
  // does, cut to 16 bits.
  static wstring Widen(std::string_view text) {
    const std::locale locale;
    const auto& facet = std::use_facet<std::ctype<wchar_t>>(locale);
    wstring wide;
    for (const char c : text) {
      wide.push_back(static_cast<char16_t>(facet.widen(c)));
    }
    return wide;
  }

  std::uint32_t magic_ = kMagic;
  wstring file_;
  std::uint32_t line_;
  wstring message_;
};

// A text that cannot be read as what it should be.
class QTL_BORDER cBadFormat : public cRecoverable {
 public:
  using cRecoverable::cRecoverable;
};

// Something looked for is not there.
class QTL_BORDER cNotFound : public cRecoverable {
 public:
  using cRecoverable::cRecoverable;
};

// An operation that this object does not offer.
class QTL_BORDER cNotSupported : public cRecoverable {
 public:
  using cRecoverable::cRecoverable;
};

}  // namespace quantel
