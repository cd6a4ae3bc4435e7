#pragma once

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// Threads in their plainest form: a handle in the caller's hand, and nothing kept here.
class CMM_EXPORT PlatformThread {
 public:
  // What a thread does.
  class CMM_EXPORT Delegate {
   public:
    virtual ~Delegate();
    virtual void Run() = 0;  // on the new thread
  };

  PlatformThread() = delete;

  static unsigned long CurrentId();
  static void YieldCurrentThread();  // to any thread of the same priority that is ready
  static void Sleep(int ms);
  static void SetName(const char* name);  // has no effect

  // Both start a thread that calls `delegate->Run()` and ends with exit code 0; true on success. `delegate`
  // is borrowed until Run returns. A `stack_size` other than 0 is the number of bytes of address space
  // reserved for the stack, rounded up by the system; 0 is the program's default.
  // Create hands the thread's handle to the caller, who gives it to Join.
  static bool Create(size_t stack_size, Delegate* delegate, void** handle);
  static bool CreateNonJoinable(size_t stack_size, Delegate* delegate);

  static void Join(void* handle);  // waits for the thread's end without limit, and closes `handle`
};

}  // namespace Cmm
