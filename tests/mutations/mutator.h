// SPDX-License-Identifier: BSD-3-Clause
// What happens to files and command lines on their way, decided by a seed alone.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace mutations {

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  // Below the limit, which is not 0.
  std::size_t Below(std::size_t limit) { return random_() % limit; }

  bool OneIn(std::size_t count) { return Below(count) == 0; }

  template <class Thing>
  const Thing& AnyOf(const std::vector<Thing>& things) {
    return things[Below(things.size())];
  }

  // One to four changes of text: what is gone, doubled, repeated, another byte, or one of the
  // pieces, which should mean something where they come to stand.
  std::string Text(std::string text, const std::vector<std::string>& pieces);

  // One to four other bytes, at either end rather than in the middle, where headers and
  // directories are not; some files end early, and some go on.
  std::string Bytes(std::string bytes);

 private:
  std::mt19937 random_;
};

}  // namespace mutations
