#pragma once

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// The plain heap, under the names that the client family calls it by.
CMM_EXPORT void* cmm_mem_alloc(size_t size);                 // null when the heap gives out
CMM_EXPORT void* cmm_mem_realloc(void* block, size_t size);  // null leaves `block` as it was
CMM_EXPORT void cmm_mem_free(void* block);                   // null does nothing

}  // namespace Cmm
