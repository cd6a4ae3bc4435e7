#include "common/client/utility/src/CmmMemory.h"

#include <cstdlib>

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

}  // namespace Cmm
