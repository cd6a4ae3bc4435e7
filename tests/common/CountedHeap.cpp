#include "tests/common/CountedHeap.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> news = 0;
std::atomic<long> deletes = 0;

}  // namespace

void* operator new(size_t size) {
  ++news;
  if (void* block = std::malloc(size)) return block;
  throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
  if (block != nullptr) ++deletes;
  std::free(block);
}

void operator delete(void* block, size_t) noexcept {
  operator delete(block);
}

namespace velm_test {

HeapCalls CountHeapCalls() {
  return {news, deletes};
}

}  // namespace velm_test
