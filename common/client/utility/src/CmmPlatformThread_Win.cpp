#include <memory>

#include "common/client/utility/src/CmmCheck.h"
#include "common/client/utility/src/CmmPlatformThread.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

namespace {

struct ThreadParams {
  PlatformThread::Delegate* delegate;
  bool joinable;  // read by nobody but who looks into a dump
};

DWORD WINAPI ThreadFunc(void* arg) {
  PlatformThread::Delegate* delegate =
      std::unique_ptr<ThreadParams>(static_cast<ThreadParams*>(arg))->delegate;
  delegate->Run();
  return 0;
}

UniqueHandle StartThread(size_t stackSize, PlatformThread::Delegate* delegate, bool joinable) {
  auto params = std::make_unique<ThreadParams>(ThreadParams{delegate, joinable});
  const DWORD flags = stackSize != 0 ? STACK_SIZE_PARAM_IS_A_RESERVATION : 0;
  UniqueHandle thread(CreateThread(nullptr, stackSize, ThreadFunc, params.get(), flags, nullptr));
  if (thread) static_cast<void>(params.release());  // the thread frees it
  return thread;
}

}  // namespace

PlatformThread::Delegate::~Delegate() = default;

unsigned long PlatformThread::CurrentId() {
  return GetCurrentThreadId();
}

void PlatformThread::YieldCurrentThread() {
  ::Sleep(0);
}

void PlatformThread::Sleep(int ms) {
  ::Sleep(static_cast<DWORD>(ms));
}

void PlatformThread::SetName(const char*) {}

bool PlatformThread::Create(size_t stack_size, Delegate* delegate, void** handle) {
  UniqueHandle thread = StartThread(stack_size, delegate, true);
  if (!thread) return false;
  *handle = thread.release();
  return true;
}

bool PlatformThread::CreateNonJoinable(size_t stack_size, Delegate* delegate) {
  return static_cast<bool>(StartThread(stack_size, delegate, false));
}

void PlatformThread::Join(void* thread_handle) {
  CMM_CHECK(thread_handle);
  WaitForSingleObject(thread_handle, INFINITE);
  UniqueHandle closed(thread_handle);
}

}  // namespace Cmm
