// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/heap_faults.h"

#include <algorithm>
#include <atomic>

namespace lx_test {
namespace {

// The table holds plain functions, so what they count stands here; one scope at a time.
std::atomic<int> allocations;
std::atomic<int> alive;
std::atomic<int> refuseAt;
std::atomic<bool> refuseAll;
std::atomic<std::size_t> largest;
std::int32_t processors;
std::int32_t pageBytes;
bool environment;

void* Allocate(std::size_t size) {
  ++allocations;
  largest = std::max(largest.load(), size);
  if (refuseAll || (refuseAt > 0 && --refuseAt == 0)) {
    return nullptr;
  }
  ++alive;
  return lx::SystemPlatform().allocate(size);
}

void Release(void* block) {
  if (block != nullptr) {
    --alive;
  }
  lx::SystemPlatform().release(block);
}

std::int32_t ProcessorCount() { return processors; }
std::int32_t PageSize() { return pageBytes; }
bool HasEnvironmentVariable(const char* /*name*/) { return environment; }

}  // namespace

HeapFaults::HeapFaults() : table_(lx::SystemPlatform()), scope_(&table_) {
  table_.allocate = Allocate;
  table_.release = Release;
  table_.processorCount = ProcessorCount;
  table_.pageSize = PageSize;
  table_.hasEnvironmentVariable = HasEnvironmentVariable;
  // A variable that is set must not reach the machine's own files.
  table_.isDirectory = [](const char*) { return false; };
  table_.makeDirectory = [](const char*) { return false; };
  table_.openFile = [](const char*, const char*) -> std::FILE* { return nullptr; };
  allocations = 0;
  alive = 0;
  refuseAt = 0;
  refuseAll = false;
  largest = 0;
  processors = lx::SystemPlatform().processorCount();
  pageBytes = lx::SystemPlatform().pageSize();
  environment = false;
}

void HeapFaults::Refuse(int n) { refuseAt = n; }
void HeapFaults::RefuseAll() { refuseAll = true; }
int HeapFaults::Allocations() const { return allocations; }
int HeapFaults::Alive() const { return alive; }
std::size_t HeapFaults::LargestRequest() const { return largest; }
void HeapFaults::SetProcessorCount(std::int32_t count) { processors = count; }
void HeapFaults::SetPageSize(std::int32_t bytes) { pageBytes = bytes; }
void HeapFaults::SetEnvironment(bool hasVariable) { environment = hasVariable; }

}  // namespace lx_test
