// The main function of every test program: makes a crash end the process with a failing exit code at
// once, with nobody asked.

#include <windows.h>

#include <cstdio>

#include "gmock/gmock.h"

namespace {

constexpr UINT kCrashExitCode = 86;

LONG WINAPI EndProcess(EXCEPTION_POINTERS* exception) {
  std::fprintf(stderr, "crashed: exception 0x%08lX at %p\n", exception->ExceptionRecord->ExceptionCode,
               exception->ExceptionRecord->ExceptionAddress);
  std::fflush(nullptr);
  TerminateProcess(GetCurrentProcess(), kCrashExitCode);
  return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

int main(int argc, char** argv) {
  SetUnhandledExceptionFilter(EndProcess);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
