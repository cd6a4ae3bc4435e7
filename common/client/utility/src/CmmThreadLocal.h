#pragma once

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm::internal {

// One pointer per thread in a slot of the system's; the caller keeps the slot's number. Every thread finds
// null in a slot until it sets it. No destructor runs for the values.
class CMM_EXPORT ThreadLocalPlatform {
 public:
  ThreadLocalPlatform() = delete;

  // When the system has no slot left, `slot` is 0xFFFFFFFF and a failed check is reported.
  static void AllocateSlot(unsigned long& slot);
  static void FreeSlot(unsigned long& slot);
  static void* GetValueFromSlot(unsigned long& slot);
  static void SetValueInSlot(unsigned long& slot, void* value);
};

}  // namespace Cmm::internal
