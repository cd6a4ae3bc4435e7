#pragma once

struct _EXCEPTION_POINTERS;

namespace Cmm::internal {

// What a filter wants done with an exception.
enum FaultVerdict : int { FAULT_RESUME = -1, FAULT_PASS_ON = 0, FAULT_CATCH = 1 };

// Sees an exception with its code before anything is unwound, on the stack of the fault.
using FaultFilter = int (*)(unsigned int code, _EXCEPTION_POINTERS* exception);

// Calls `body(argument)` and guards it against hardware faults, exceptions of the system and C++ exceptions.
// True when `body` returned; false when it ended by an exception that `filter` had caught. One that is passed
// on reaches the caller's handlers as if there were no guard.
// The destructors of the frames between run for C++ exceptions only.
bool RunGuarded(void (*body)(void*), void* argument, FaultFilter filter);

}  // namespace Cmm::internal
