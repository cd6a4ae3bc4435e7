#include "common/client/utility/src/CmmLogPath.h"

#include <windows.h>

#include <algorithm>

namespace logging::internal {

std::wstring DirectoryOf(std::wstring_view path) {
  return std::wstring(path.substr(0, path.rfind(L'\\') + 1));
}

std::wstring ProgramDirectory() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  path[MAX_PATH - 1] = L'\0';
  return DirectoryOf(path);
}

std::wstring DefaultLogPath() {
  return ProgramDirectory() + L"debug.log";
}

std::wstring LogMutexName(std::wstring_view path) {
  std::wstring name = L"Global\\";
  const size_t prefix = name.size();
  name += path;
  std::replace(name.begin() + static_cast<std::ptrdiff_t>(prefix), name.end(), L'\\', L'/');
  return name;
}

}  // namespace logging::internal
