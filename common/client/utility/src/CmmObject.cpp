#include "common/client/utility/src/CmmObject.h"

#include <new>

#include "common/client/utility/src/CmmMemory.h"

namespace Cmm {

void* CObject::operator new(size_t size) {
  if (void* block = cmm_mem_alloc(size)) return block;
  throw std::bad_alloc();
}

void* CObject::operator new[](size_t size) {
  return CObject::operator new(size);
}

void CObject::operator delete(void* block) noexcept {
  cmm_mem_free(block);
}

void CObject::operator delete[](void* block) noexcept {
  cmm_mem_free(block);
}

}  // namespace Cmm
