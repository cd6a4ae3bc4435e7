#include "common/client/utility/src/CmmEvent.h"

#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

namespace {

ESyncRet WaitFor(HANDLE event, DWORD ms) {
  return static_cast<ESyncRet>(WaitForSingleObject(event, ms));
}

}  // namespace

CEvent::CEvent() : m_event(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

CEvent::~CEvent() {
  if (this != nullptr) UniqueHandle closed(m_event);
}

void CEvent::Lock() {
  WaitFor(m_event, INFINITE);
}

ESyncRet CEvent::Lock(unsigned long ms) {
  return WaitFor(m_event, ms);
}

void CEvent::Unlock() {}

// A pulse, not a set: a signal must not outlive its moment and release a waiter who comes later.
void CEvent::Signal() {
  if (this != nullptr) PulseEvent(m_event);
}

CState::CState(int signaled) : m_event(CreateEventW(nullptr, TRUE, signaled != 0, nullptr)) {}

CState::~CState() {
  if (this != nullptr) UniqueHandle closed(m_event);
}

void CState::Lock() {
  WaitFor(m_event, INFINITE);
}

ESyncRet CState::Lock(unsigned long ms) {
  return WaitFor(m_event, ms);
}

void CState::Unlock() {}

void CState::Signal() {
  if (this != nullptr) SetEvent(m_event);
}

void CState::Pulse() {
  if (this != nullptr) PulseEvent(m_event);
}

void CState::Unsignal() {
  if (this != nullptr) ResetEvent(m_event);
}

int CState::IsSignaled() const {
  return this == nullptr || WaitFor(m_event, 0) == SYNC_OK;
}

}  // namespace Cmm
