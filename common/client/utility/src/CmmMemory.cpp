#include "common/client/utility/src/CmmMemory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Cmm {

void* cmm_mem_alloc(size_t size) {
  return std::malloc(size);
}

void* cmm_mem_realloc(void* block, size_t size) {
  return std::realloc(block, size);
}

void cmm_mem_free(void* block) {
  std::free(block);
}

int cmm_memcmp_s(const void* a, size_t aSize, const void* b, size_t count, int* result) {
  if (a == nullptr || b == nullptr || result == nullptr) return kMemoryNullPointer;
  if (aSize == 0 || count == 0 || count > aSize) return kMemoryWrongSize;
  if (aSize > kMaxCheckedMemory) return kMemorySizeTooLarge;
  const int order = std::memcmp(a, b, count);
  *result = (order > 0) - (order < 0);
  return kMemoryDone;
}

int cmm_memset_s(void* dst, size_t dstSize, int value, size_t count) {
  if (dstSize == 0 || count == 0) return kMemoryDone;
  if (dst == nullptr) return kMemoryNullPointer;
  if (dstSize > kMaxCheckedMemory || count > kMaxCheckedMemory) return kMemorySizeTooLarge;
  std::memset(dst, value, std::min(count, dstSize));
  __asm__ __volatile__("" : : "r"(dst) : "memory");  // the compiler must take the bytes for used
  return count > dstSize ? kMemoryNoSpace : kMemoryDone;
}

}  // namespace Cmm
