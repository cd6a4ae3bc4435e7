#include "host/CmmGUID.h"

#include <objbase.h>
#include <windows.h>

#include <cstring>
#include <ctime>
#include <cwchar>
#include <string>
#include <utility>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

namespace {

constexpr unsigned int kByteFormSize = 16;
static_assert(sizeof(GUID) == kByteFormSize);

struct TaskMemoryTraits {
  using Type = wchar_t*;
  static Type Empty() { return nullptr; }
  static void Release(Type value) { CoTaskMemFree(value); }
};
using UniqueTaskText = UniqueResource<TaskMemoryTraits>;

// The system's text of the record, empty on failure.
UniqueTaskText TextOf(const GUID& guid) {
  UniqueTaskText text;
  if (FAILED(StringFromCLSID(guid, text.put()))) text.reset();
  return text;
}

// Between the byte form and the record's memory; its own inverse.
void SwapFieldBytes(unsigned char* bytes) {
  for (const auto& [a, b] : {std::pair{0, 3}, {1, 2}, {4, 5}, {6, 7}})
    std::swap(bytes[a], bytes[b]);
}

}  // namespace

namespace internal {

CStringT<wchar_t> StandByGuid(int64_t seconds) {
  const std::wstring digits = std::to_wstring(seconds) + L"11112222";
  return L"99999999-" + digits.substr(0, 4) + L"-" + digits.substr(4, 4) + L"-" + digits.substr(8, 4) +
         L"-000000000000";
}

}  // namespace internal

CmmGUID::CmmGUID() {
  Generate();
}

CmmGUID::CmmGUID(const CStringT<wchar_t>& text) : m_strGUID(text) {
  if (m_strGUID.empty()) Generate();
}

CmmGUID::~CmmGUID() {
  UniqueTaskText freed(static_cast<wchar_t*>(m_pTaskMem));
}

void CmmGUID::Generate() {
  GUID guid;
  if (FAILED(CoCreateGuid(&guid))) return;
  UniqueTaskText text = TextOf(guid);
  if (!text) return;
  m_strGUID = text.get();
  m_pTaskMem = text.release();
}

int CmmGUID::operator==(const CmmGUID& other) const {
  return m_strGUID == other.m_strGUID;
}

int CmmGUID::operator==(const CmmGUID& other) {
  return m_strGUID == other.m_strGUID;
}

int CmmGUID::operator==(CmmGUID& other) const {
  return m_strGUID == other.m_strGUID;
}

int CmmGUID::operator==(CmmGUID& other) {
  return m_strGUID == other.m_strGUID;
}

CStringT<wchar_t>& CmmGUID::GetStr(int naked) {
  if (m_strGUID.empty()) m_strGUID = internal::StandByGuid(std::time(nullptr));
  if (!naked) return m_strGUID;
  if (m_bNakedDirty) {
    m_strNakedGUID = GetNakedGUID(m_strGUID);
    m_bNakedDirty = 0;
  }
  return m_strNakedGUID;
}

// The first piece between braces that is more than blanks.
CStringT<wchar_t> CmmGUID::GetNakedGUID(const CStringT<wchar_t>& text) {
  constexpr int kAnyOfTheUnits = 1;
  for (CStringT<wchar_t>& piece : text.SplitString(L"{}", kAnyOfTheUnits)) {
    piece.Trim();
    if (!piece.empty()) return piece;
  }
  return {};
}

int CmmGUID::GetByte(unsigned char* bytes, unsigned int& size) {
  if (m_strGUID.empty()) return 0;
  CStringT<wchar_t> braced = m_strGUID;
  if (braced[0] != L'{') braced = L"{" + m_strGUID.GetCData() + L"}";
  GUID guid;
  if (FAILED(CLSIDFromString(braced.c_str(), &guid)) || !bytes || size < kByteFormSize) return 0;
  std::memcpy(bytes, &guid, kByteFormSize);
  SwapFieldBytes(bytes);
  size = kByteFormSize;
  return 1;
}

int CmmGUID::ByteToString(unsigned char* bytes, unsigned int, CStringT<wchar_t>& text, int naked) {
  if (!bytes) return 0;
  SwapFieldBytes(bytes);  // in the caller's buffer, which stays so
  GUID guid;
  std::memcpy(&guid, bytes, kByteFormSize);
  const UniqueTaskText braced = TextOf(guid);
  if (!braced) return 0;
  text.Assign(braced.get() + 1, std::wcslen(braced.get()) - 2);
  if (!naked) return 1;
  text = GetNakedGUID(text);
  return !text.empty();
}

}  // namespace Cmm
