#include "common/client/utility/src/CmmFile.h"

#include <sys/stat.h>
#include <windows.h>

#include <utility>

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmFilePath.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

static_assert(CFile::kRead == GENERIC_READ && CFile::kWrite == GENERIC_WRITE);
static_assert(CFile::kFromStart == FILE_BEGIN && CFile::kFromCurrent == FILE_CURRENT);
static_assert(CFile::kFromEnd == FILE_END);

namespace {

// 0 where the low half is what the system answers on failure.
int64_t FromHalves(DWORD low, LONG high) {
  static_assert(INVALID_SET_FILE_POINTER == INVALID_FILE_SIZE);
  if (low == INVALID_FILE_SIZE) return 0;
  return static_cast<int64_t>(static_cast<uint64_t>(static_cast<DWORD>(high)) << 32 | low);
}

int64_t MovePosition(HANDLE file, int64_t offset, DWORD method) {
  LONG high = static_cast<LONG>(offset >> 32);
  const DWORD low = SetFilePointer(file, static_cast<LONG>(offset & 0xFFFFFFFF), &high, method);
  return FromHalves(low, high);
}

}  // namespace

CFile::CFile() : m_handle(INVALID_HANDLE_VALUE) {}
CFile::CFile(void* handle) : m_handle(handle) {}

CFile::~CFile() {
  Close();
}

CFile::operator void*() const {
  return IsOpened() ? m_handle : nullptr;
}

void* CFile::GetPlatformFile() const {
  return m_handle;
}

void CFile::Attach(void* handle) {
  m_handle = handle;
}

void* CFile::Detach() {
  return std::exchange(m_handle, INVALID_HANDLE_VALUE);
}

void CFile::Swap(CFile& other) {
  std::swap(m_handle, other.m_handle);
}

void CFile::Close() {
  if (void* const handle = *this) UniqueFileHandle closed(handle);
  m_handle = INVALID_HANDLE_VALUE;
}

bool CFile::IsOpened() const {
  return m_handle != INVALID_HANDLE_VALUE;
}

void CFile::Open(const wchar_t* path, EAccess access, uint32_t share, uint32_t disposition) {
  m_handle = CreateFileW(path, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

void CFile::CreateNew(const wchar_t* path, EAccess access) {
  Open(path, access, FILE_SHARE_READ, CREATE_NEW);
}

void CFile::CreateNew(const FilePath& path, EAccess access) {
  CreateNew(path.value().c_str(), access);
}

void CFile::CreateAlways(const wchar_t* path, EAccess access) {
  Open(path, access, FILE_SHARE_READ, CREATE_ALWAYS);
}

void CFile::CreateAlways(const FilePath& path, EAccess access) {
  CreateAlways(path.value().c_str(), access);
}

void CFile::OpenAlways(const wchar_t* path, EAccess access) {
  Open(path, access, FILE_SHARE_READ, OPEN_ALWAYS);
}

void CFile::OpenAlways(const FilePath& path, EAccess access) {
  OpenAlways(path.value().c_str(), access);
}

void CFile::OpenExisting(const wchar_t* path, EAccess access, int shareWrite) {
  Open(path, access, FILE_SHARE_READ | (shareWrite ? FILE_SHARE_WRITE : 0), OPEN_EXISTING);
}

void CFile::OpenExisting(const FilePath& path, EAccess access, int shareWrite) {
  OpenExisting(path.value().c_str(), access, shareWrite);
}

void CFile::TruncateExisting(const wchar_t* path, EAccess access) {
  Open(path, access, FILE_SHARE_READ, TRUNCATE_EXISTING);
}

uint32_t CFile::Read(void* buf, uint32_t n) {
  DWORD read = 0;
  if (n == 0 || !ReadFile(m_handle, buf, n, &read, nullptr)) return 0;
  return read;
}

uint32_t CFile::Write(const void* buf, uint32_t n) {
  DWORD written = 0;
  if (n == 0 || !WriteFile(m_handle, buf, n, &written, nullptr)) return 0;
  return written;
}

int CFile::ReadLine(char* buf, int size) {
  if (!this || !buf || size < 1) return -1;
  int n = 0;
  // The byte at `size` may be read as well: a line feed there ends the line, anything else gives way to the
  // terminator and is lost.
  while (Read(buf + n, 1) == 1 && buf[n] != '\n' && n < size)
    ++n;
  buf[n] = '\0';
  if (n == 0) return -1;
  if (buf[n - 1] == '\r') buf[--n] = '\0';
  return n;
}

int64_t CFile::SeekSet(int64_t pos) {
  return Seek(pos, kFromStart);
}

int64_t CFile::SeekCur(int64_t off) {
  return Seek(off, kFromCurrent);
}

int64_t CFile::SeekEnd(int64_t off) {
  return Seek(off, kFromEnd);
}

int64_t CFile::Seek(int64_t off, ESeekType type) {
  return MovePosition(m_handle, off, static_cast<DWORD>(type));
}

int64_t CFile::Tell() const {
  return MovePosition(m_handle, 0, FILE_CURRENT);
}

int64_t CFile::GetSize() const {
  DWORD high = 0;
  const DWORD low = GetFileSize(m_handle, &high);
  return FromHalves(low, static_cast<LONG>(high));
}

int CFile::SetSize(int64_t n) {
  const int64_t position = Tell();
  SeekSet(n);
  const int isSet = SetEof();
  SeekSet(position);
  return isSet;
}

int CFile::SetEof() {
  return SetEndOfFile(m_handle);
}

int CFile::Flush() {
  return FlushFileBuffers(m_handle);
}

bool CFile::FileExist(const FilePath& path) {
  return FileExist(path.value().c_str());
}

bool CFile::FileExist(const wchar_t* path) {
  const A2BT<65001, wchar_t, char> utf8(path);
  struct _stat64 status;
  return _stat64(utf8.c_str(), &status) == 0;
}

}  // namespace Cmm
