// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/refused_new.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace lx_test {
namespace {

std::atomic<long> blocksAlive{0};
std::atomic<long> toGo{0};  // requests up to the refused one; 0 and below: none is
std::atomic<bool> wasRefused{false};

bool IsRefused() {
  if (toGo.load() <= 0 || toGo.fetch_sub(1) != 1) {
    return false;
  }
  wasRefused = true;
  return true;
}

}  // namespace

RefusedNew::RefusedNew(long n) {
  wasRefused = false;
  toGo = n;
}

RefusedNew::~RefusedNew() { toGo = 0; }

bool RefusedNew::WasRefused() const { return wasRefused; }

long BlocksAlive() { return blocksAlive; }

}  // namespace lx_test

// The library's other forms, but for the over-aligned ones, end in these.
void* operator new(std::size_t size) {
  void* const block = lx_test::IsRefused() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  ++lx_test::blocksAlive;
  return block;
}

void operator delete(void* block) noexcept {
  if (block != nullptr) {
    --lx_test::blocksAlive;
  }
  std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept { operator delete(block); }
