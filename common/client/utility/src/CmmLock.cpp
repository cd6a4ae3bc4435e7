#include "common/client/utility/src/CmmLock.h"

#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

namespace {

CRITICAL_SECTION* SectionIn(unsigned char (&storage)[sizeof(CRITICAL_SECTION)]) {
  static_assert(alignof(CRITICAL_SECTION) == alignof(void*));
  return reinterpret_cast<CRITICAL_SECTION*>(storage);
}

}  // namespace

CCritical::CCritical() {
  if (this != nullptr) InitializeCriticalSection(SectionIn(m_section));
}

CCritical::~CCritical() {
  if (this != nullptr) DeleteCriticalSection(SectionIn(m_section));
}

void CCritical::Lock() {
  if (this != nullptr) EnterCriticalSection(SectionIn(m_section));
}

void CCritical::Unlock() {
  if (this != nullptr) LeaveCriticalSection(SectionIn(m_section));
}

ESyncRet CCritical::TryLock() {
  if (this == nullptr) return SYNC_NO_OBJECT;
  return TryEnterCriticalSection(SectionIn(m_section)) ? SYNC_OK : SYNC_TIMEOUT;
}

CMutex::CMutex() : m_event(CreateEventW(nullptr, FALSE, TRUE, nullptr)) {}

CMutex::~CMutex() {
  if (this != nullptr) UniqueHandle closed(m_event);
}

void CMutex::Lock() {
  if (this != nullptr && m_event != nullptr) WaitForSingleObject(m_event, INFINITE);
}

void CMutex::Unlock() {
  if (this != nullptr && m_event != nullptr) SetEvent(m_event);
}

ESyncRet CMutex::TryLock() {
  return this == nullptr ? SYNC_NO_OBJECT : static_cast<ESyncRet>(WaitForSingleObject(m_event, 0));
}

}  // namespace Cmm
