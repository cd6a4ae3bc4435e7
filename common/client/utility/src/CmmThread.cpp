#include "common/client/utility/src/CmmThread.h"

#include <process.h>

#include <utility>

#include "common/client/utility/src/CmmObject.h"
#include "common/client/utility/src/UniqueHandle.h"
#undef Yield

namespace Cmm {

namespace {

unsigned int RunBody(void* body) {
  return static_cast<IThread*>(body)->ThreadProc();
}

unsigned int RunAndRelease(void* arg) {
  auto* thread = static_cast<CRefThread*>(arg);
  const unsigned int exitCode = thread->ThreadProc();
  thread->Release();
  return exitCode;
}

}  // namespace

CThread::CThread() = default;

CThread::~CThread() {
  Detach();
}

void CThread::Start(unsigned int (*entry)(void*), void* arg) {
  Detach();
  m_handle = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, entry, arg, 0, &m_id));
}

void CThread::Create(IThread* body) {
  Start(RunBody, body);
}

void CThread::CreateBy(unsigned long (*proc)(void*), void* arg) {
  // The two types of entry differ in name only: this platform has one calling convention, and its long is
  // as wide as its int.
  static_assert(sizeof(unsigned long) == sizeof(unsigned int));
  Start(reinterpret_cast<unsigned int (*)(void*)>(proc), arg);
}

int CThread::IsValid() const {
  return this == nullptr ? 0 : static_cast<int>(m_id);
}

CThread::operator int() const {
  return IsValid();
}

bool CThread::IsRunning() const {
  return m_handle != nullptr && WaitForSingleObject(m_handle, 0) != WAIT_OBJECT_0;
}

void CThread::Join() {
  if (m_handle == nullptr) return;
  WaitForSingleObject(m_handle, INFINITE);
  UniqueHandle closed(std::exchange(m_handle, nullptr));
  m_id = 0;
}

// The id stays: IsValid goes on telling which thread this was.
void CThread::Detach() {
  if (m_id != 0) UniqueHandle closed(std::exchange(m_handle, nullptr));
}

void CThread::Kill() {
  if (m_id == 0) return;
  const UniqueHandle closed(std::exchange(m_handle, nullptr));
  TerminateThread(closed.get(), 0);
  m_id = 0;
}

unsigned long CThread::Suspend() {
  return SuspendThread(m_handle);
}

unsigned long CThread::Resume() {
  return ResumeThread(m_handle);
}

void CThread::Sleep(unsigned int ms) {
  ::Sleep(ms);
}

void CThread::Yield() {
  SwitchToThread();
}

void* CRefThread::operator new(size_t size) {
  return CObject::operator new(size);
}

void CRefThread::operator delete(void* block) noexcept {
  CObject::operator delete(block);
}

CRefThread::CRefThread() = default;

CRefThread::~CRefThread() = default;

long CRefThread::AddRef() {
  return m_references.Inc();
}

long CRefThread::Release() {
  const long before = m_references -= 1;
  if (before < 2) delete this;
  return before - 1;
}

void CRefThread::Create() {
  AddRef();
  Start(RunAndRelease, this);
}

}  // namespace Cmm
