#pragma once

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// The plain heap, under the names that the client family calls it by.
CMM_EXPORT void* cmm_mem_alloc(size_t size);                 // null when the heap gives out
CMM_EXPORT void* cmm_mem_realloc(void* block, size_t size);  // null leaves `block` as it was
CMM_EXPORT void cmm_mem_free(void* block);                   // null does nothing

// What the checked byte routines answer. Where several apply, the lowest is reported.
constexpr int kMemoryDone = 0;
constexpr int kMemoryNullPointer = 400;
constexpr int kMemoryWrongSize = 402;
constexpr int kMemorySizeTooLarge = 403;
constexpr int kMemoryNoSpace = 406;

constexpr size_t kMaxCheckedMemory = 0x6400000;  // the largest size in bytes that they accept

// Compares the first `count` bytes at `a`, which holds `aSize` bytes, with those at `b`. `*result` is
// -1, 0 or 1, by unsigned bytes; it is written only when the answer is kMemoryDone.
// Answers 400 for a null pointer; 402 for a zero size or `count` above `aSize`; 403 for `aSize` above
// kMaxCheckedMemory.
CMM_EXPORT int cmm_memcmp_s(const void* a, size_t aSize, const void* b, size_t count, int* result);

// Fills the first `count` of the `dstSize` bytes at `dst` with the low byte of `value`; an optimiser
// does not remove the fill, even when nothing reads the memory again.
// Answers 0 for a zero size, before it looks at `dst`; 400 for a null `dst`; 403 for either size above
// kMaxCheckedMemory, with nothing filled; 406 for `count` above `dstSize`, with `dstSize` bytes filled.
CMM_EXPORT int cmm_memset_s(void* dst, size_t dstSize, int value, size_t count);

}  // namespace Cmm
