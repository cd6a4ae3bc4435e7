#pragma once

// What the tests of locks, signals and threads share.

#include <windows.h>
#undef Yield

#include <atomic>
#include <cstring>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "common/client/utility/src/CmmThread.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace cmm_thread_testing {

// How long a thread is watched that must not get on. A test passes however slow the machine is.
constexpr unsigned long kStaysBlockedMs = 30;

// A null pointer that the compiler does not see through.
template <typename T>
T* NullOf() {
  T* volatile pointer = nullptr;
  return pointer;
}

// Runs `work(index)` on `count` threads that begin together, and waits for their ends.
template <typename Work>
void RunTogether(int count, Work work) {
  std::atomic<int> missing = count;  // not a std::latch: this runtime's can miss its last arrival
  std::vector<std::jthread> threads;
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&missing, &work, i] {
      --missing;
      while (missing != 0)
        std::this_thread::yield();
      work(i);
    });
  }
}

// The handle that an object of the library holds as its first member.
template <typename T>
HANDLE HandleIn(const T& object) {
  HANDLE handle;
  std::memcpy(&handle, &object, sizeof(handle));
  return handle;
}

inline bool IsOpen(HANDLE handle) {
  DWORD flags;
  return GetHandleInformation(handle, &flags) != 0;
}

// Whether the handle still stands for the thread of that id. Its value alone would not tell: the process
// gives the value of a closed handle to the next object that any of its threads opens.
inline bool IsHandleOfThread(HANDLE handle, DWORD id) {
  return GetThreadId(handle) == id;
}

// An object as it is when the system gave it no event: T holds the event's handle and nothing else.
template <typename T>
class WithoutEvent {
  static_assert(sizeof(T) == sizeof(HANDLE));

 public:
  WithoutEvent() {
    Cmm::UniqueHandle closed(HandleIn(m_object));
    const HANDLE none = nullptr;
    std::memcpy(static_cast<void*>(&m_object), &none, sizeof(none));
  }
  T* operator->() { return &m_object; }

 private:
  T m_object;
};

// A thread's body from a function.
class Body final : public Cmm::IThread {
 public:
  explicit Body(std::function<unsigned int()> proc) : m_proc(std::move(proc)) {}
  unsigned int ThreadProc() override { return m_proc(); }

 private:
  std::function<unsigned int()> m_proc;
};

// A second handle to what `handle` stands for.
inline Cmm::UniqueHandle DuplicateOf(HANDLE handle) {
  Cmm::UniqueHandle copy;
  DuplicateHandle(GetCurrentProcess(), handle, GetCurrentProcess(), copy.put(), 0, FALSE,
                  DUPLICATE_SAME_ACCESS);
  return copy;
}

// The exit code of a thread, once it has ended.
inline unsigned long ExitCodeOf(const Cmm::UniqueHandle& thread) {
  DWORD code = STILL_ACTIVE;
  WaitForSingleObject(thread.get(), INFINITE);
  GetExitCodeThread(thread.get(), &code);
  return code;
}

}  // namespace cmm_thread_testing
