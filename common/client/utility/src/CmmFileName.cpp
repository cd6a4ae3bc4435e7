#include "common/client/utility/src/CmmFileName.h"

#include <windows.h>

#include "common/client/utility/src/CmmPathUnits.h"

namespace Cmm {

namespace {

constexpr DWORD kBufferUnits = kPathLimit;

// Takes what a system call answered for a buffer of kBufferUnits: 0 is a failure, and the units of the
// buffer or more say that the path did not fit.
int TakeAnswer(CFileName& target, const wchar_t* buffer, DWORD length) {
  if (length == 0 || length >= kBufferUnits) {
    target.clear();
    return 0;
  }
  target.assign(buffer, length);
  return 1;
}

}  // namespace

CFileName::CFileName() = default;
CFileName::CFileName(const wchar_t* path) : CStringT<wchar_t>(path) {}
CFileName::CFileName(const CStringT<wchar_t>& path) : CStringT<wchar_t>(path) {}
CFileName::CFileName(const CFileName&) = default;
CFileName::CFileName(CFileName&&) noexcept = default;
CFileName& CFileName::operator=(const CFileName&) = default;
CFileName& CFileName::operator=(CFileName&&) noexcept = default;
CFileName::~CFileName() = default;

// The index behind the last separator.
size_t CFileName::NameStart() const {
  const size_t separator = find_last_of(kPathSeparators.data(), npos, kPathSeparators.size());
  return separator == npos ? 0 : separator + 1;
}

// The index of the last dot of the last component, or the length.
size_t CFileName::LastDot() const {
  const size_t dot = rfind(L'.');
  return dot == npos || dot < NameStart() ? size() : dot;
}

const wchar_t* CFileName::GetExt(int withDot) const {
  const size_t dot = LastDot();
  return c_str(dot == size() || withDot ? dot : dot + 1);
}

const wchar_t* CFileName::GetName() const {
  return c_str(NameStart());
}

CFnRangeT<wchar_t> CFileName::GetPath(int withSlash) const {
  const size_t name = NameStart();
  return {c_str(), c_str(name == 0 || withSlash ? name : name - 1)};
}

CFnRangeT<wchar_t> CFileName::GetPathBody(int withDot) const {
  const size_t dot = LastDot();
  return {c_str(), c_str(dot == size() || !withDot ? dot : dot + 1)};
}

CFnRangeT<wchar_t> CFileName::GetBody() const {
  const size_t name = NameStart();
  const size_t dot = find(L'.', name);
  return {c_str(name), c_str(dot == npos ? size() : dot)};
}

void CFileName::MakeSlash() {
  if (!empty() && !IsPathSeparator(GetAt(size() - 1))) push_back(L'\\');
}

int CFileName::GetCurrentDirectoryW() {
  wchar_t buffer[kBufferUnits];
  return TakeAnswer(*this, buffer, ::GetCurrentDirectoryW(kBufferUnits, buffer));
}

int CFileName::GetModuleFileNameW(HINSTANCE__* module) {
  wchar_t buffer[kBufferUnits];
  return TakeAnswer(*this, buffer, ::GetModuleFileNameW(module, buffer, kBufferUnits));
}

int CFileName::GetModuleFilePath(HINSTANCE__* module) {
  if (!GetModuleFileNameW(module)) return 0;
  resize(GetPath(0).GetLength());
  return 1;
}

int CFileName::GetSiblingModuleFileName(const wchar_t* name, HINSTANCE__* module) {
  const CStringT<wchar_t> sibling(name);  // `name` may be a part of this string
  if (!GetModuleFilePath(module)) return 0;
  push_back(L'\\');
  append(sibling);
  return 1;
}

int CFileName::GetFullPathNameW(const wchar_t* path) {
  wchar_t buffer[kBufferUnits];
  return TakeAnswer(*this, buffer, ::GetFullPathNameW(path, kBufferUnits, buffer, nullptr));
}

int CFileName::GetAppPubCertPath() {
  return GetModuleFilePath(nullptr);
}

int CFileName::SetCurrentDirectoryW() const {
  return ::SetCurrentDirectoryW(c_str());
}

}  // namespace Cmm
