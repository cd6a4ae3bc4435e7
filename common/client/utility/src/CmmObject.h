#pragma once

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// A base that makes its heirs live on the plain heap, as cmm_mem_alloc and cmm_mem_free give it. The heap
// giving out raises std::bad_alloc. It has no virtual operation: delete an heir through its own type.
class CMM_EXPORT CObject {
 public:
  static void* operator new(size_t size);
  static void* operator new[](size_t size);
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* block) noexcept;
  static void operator delete[](void* block) noexcept;
  static void operator delete(void*, void*) noexcept {}
};

}  // namespace Cmm
