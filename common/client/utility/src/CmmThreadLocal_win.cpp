#include <windows.h>

#include <string>

#include "common/client/utility/src/CmmCheck.h"
#include "common/client/utility/src/CmmThreadLocal.h"

namespace Cmm::internal {

void ThreadLocalPlatform::AllocateSlot(unsigned long& slot) {
  slot = TlsAlloc();
  if (slot != TLS_OUT_OF_INDEXES) return;
  ReportFailedCheck(__FILE__, __LINE__,
                    "Check failed: slot != ((DWORD)0xFFFFFFFF) (" + std::to_string(slot) + " vs. " +
                        std::to_string(TLS_OUT_OF_INDEXES) + ")");
}

void ThreadLocalPlatform::FreeSlot(unsigned long& slot) {
  TlsFree(slot);
}

void* ThreadLocalPlatform::GetValueFromSlot(unsigned long& slot) {
  return TlsGetValue(slot);
}

void ThreadLocalPlatform::SetValueInSlot(unsigned long& slot, void* value) {
  TlsSetValue(slot, value);
}

}  // namespace Cmm::internal
