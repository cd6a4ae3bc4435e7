// Plays the crash reporter: its filter answers what the test told it.

#include "tests/common/vCrashReport64.h"

#include <windows.h>

extern "C" {

__declspec(dllexport) CrashReporterState crTestState;

__declspec(dllexport) int crExceptionFilter(unsigned int code, EXCEPTION_POINTERS* exception) {
  ++crTestState.calls;
  crTestState.code = code;
  crTestState.recordCode = exception->ExceptionRecord->ExceptionCode;
  crTestState.hasContext = exception->ContextRecord && exception->ContextRecord->Rip != 0;
  return crTestState.verdict;
}

}  // extern "C"
