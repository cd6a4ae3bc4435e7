#include "common/client/utility/src/CmmFileData.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>

#include "common/client/utility/src/UniqueHandle.h"

namespace {

DWORD CountForOneCall(size_t size) {
  return static_cast<DWORD>(std::min<size_t>(size, MAXDWORD));
}

Cmm::UniqueFileHandle Open(const wchar_t* path, DWORD access, DWORD disposition) {
  return Cmm::UniqueFileHandle(
      CreateFileW(path, access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace

int cmm_fs_read(const wchar_t* path, std::string& out) {
  const Cmm::UniqueFileHandle file = Open(path, GENERIC_READ, OPEN_EXISTING);
  if (!file) return 0;
  LARGE_INTEGER size = {};
  GetFileSizeEx(file.get(), &size);
  std::string content(static_cast<size_t>(size.QuadPart), '\0');
  DWORD read = 0;
  ReadFile(file.get(), content.data(), CountForOneCall(content.size()), &read, nullptr);
  out.swap(content);
  return 1;
}

int cmm_fs_read_v2(const wchar_t* path, std::string& out) {
  if (!path) return 0;
  if (cmm_fs_read(path, out) && !out.empty()) return 1;
  // A stream opens with a sharing mode that lets others write.
  std::ifstream stream(std::filesystem::path(path), std::ios::binary);
  stream.seekg(0, std::ios::end);
  const std::streamoff size = stream.tellg();
  if (size <= 0) return 0;
  stream.seekg(0, std::ios::beg);
  out.resize(static_cast<size_t>(size));
  stream.read(out.data(), size);
  return 1;
}

size_t cmm_fs_write(const wchar_t* path, const void* data, size_t len, bool truncate) {
  const Cmm::UniqueFileHandle file = Open(path, GENERIC_WRITE, truncate ? CREATE_ALWAYS : OPEN_ALWAYS);
  if (!file || !data || len == 0) return 0;
  DWORD written = 0;
  WriteFile(file.get(), data, CountForOneCall(len), &written, nullptr);
  return written;
}
