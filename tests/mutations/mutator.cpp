// SPDX-License-Identifier: BSD-3-Clause
#include "tests/mutations/mutator.h"

#include <algorithm>
#include <iterator>

namespace mutations {

std::string Mutator::Text(std::string text, const std::vector<std::string>& pieces) {
  for (std::size_t count = 1 + Below(4); count > 0; --count) {
    const std::size_t at = Below(text.size() + 1);
    const std::size_t length = std::min(Below(12), text.size() - at);
    switch (Below(6)) {
      case 0:
        text.insert(at, AnyOf(pieces));
        break;
      case 1:
        text.replace(at, length, AnyOf(pieces));
        break;
      case 2:
        text.erase(at, length);
        break;
      case 3:
        text.insert(Below(text.size() + 1), text.substr(at, length * 4));
        break;
      case 4:
        text.insert(at, std::string(Below(300), "[{\".'\n \xff"[Below(8)]));
        break;
      default:
        text.replace(at, std::min<std::size_t>(1, length), 1, static_cast<char>(Below(256)));
    }
  }
  return text;
}

std::string Mutator::Bytes(std::string bytes) {
  const std::size_t reach = OneIn(2) ? bytes.size() : std::min<std::size_t>(bytes.size(), 64);
  for (std::size_t count = 1 + Below(4); count > 0 && reach > 0; --count) {
    const std::size_t back = Below(reach);
    const char values[] = {0, 1, '\x7F', '\x80', '\xFF', static_cast<char>(Below(256))};
    bytes[OneIn(2) ? back : bytes.size() - 1 - back] = values[Below(std::size(values))];
  }
  if (OneIn(8)) {
    bytes.resize(Below(bytes.size() + 1));
  } else if (OneIn(16)) {
    bytes.append(Below(64), static_cast<char>(Below(256)));
  }
  return bytes;
}

}  // namespace mutations
