#include "common/client/utility/src/CmmFaultGuard.h"

#include <windows.h>

namespace {

// The code under which this compiler's C++ exceptions are raised.
constexpr DWORD kCppException = 0x20474343;

struct Guard {
  Cmm::internal::FaultFilter filter;
  bool passesOn = false;  // a C++ exception
};

}  // namespace

extern "C" {

// In CmmFaultGuard_x64.S. 0 when `body` returned, 1 when an exception ended it for which `filter` answered 1.
int velm_invoke_guarded(void (*body)(void*), void* argument, long (*filter)(EXCEPTION_POINTERS*, void*),
                        void* filterContext);
}

namespace Cmm::internal {
namespace {

long Filter(EXCEPTION_POINTERS* exception, void* context) {
  Guard& guard = *static_cast<Guard*>(context);
  const DWORD code = exception->ExceptionRecord->ExceptionCode;
  const int verdict = guard.filter(code, exception);
  if (code != kCppException || verdict < 0) return verdict;
  // Only a catch clause of the language ends such an exception in good order: the one below.
  guard.passesOn = verdict == FAULT_PASS_ON;
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

bool RunGuarded(void (*body)(void*), void* argument, FaultFilter filter) {
  Guard guard{filter};
  try {
    return velm_invoke_guarded(body, argument, Filter, &guard) == 0;
  } catch (...) {
    if (guard.passesOn) throw;
    return false;
  }
}

}  // namespace Cmm::internal
