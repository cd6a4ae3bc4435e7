#include "host/SystemLibrary.h"

#include <atomic>

namespace Cmm {
namespace {

// The loader's directory search came to older systems with an update, which brought this export too.
bool LoaderSearchesSystemDirectory() {
  enum Answer { kUndecided, kYes, kNo };
  static std::atomic<Answer> g_answer{kUndecided};
  Answer answer = g_answer.load(std::memory_order_relaxed);
  if (answer == kUndecided) {
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    answer = kernel && GetProcAddress(kernel, "RemoveDllDirectory") ? kYes : kNo;
    g_answer.store(answer, std::memory_order_relaxed);
  }
  return answer == kYes;
}

}  // namespace

std::wstring JoinSystemPath(std::wstring_view directory, std::wstring_view name) {
  std::wstring path(directory);
  if (!path.ends_with(L'\\') && !path.ends_with(L'/')) path += L'\\';
  path += name;
  return path;
}

UniqueModule LoadSystemLibraryBySearch(const wchar_t* name) {
  return UniqueModule(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
}

UniqueModule LoadSystemLibraryByPath(const wchar_t* name) {
  wchar_t directory[MAX_PATH] = {};
  const UINT length = GetSystemDirectoryW(directory, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return {};
  return UniqueModule(LoadLibraryW(JoinSystemPath(directory, name).c_str()));
}

UniqueModule LoadSystemLibrary(const wchar_t* name) {
  return LoaderSearchesSystemDirectory() ? LoadSystemLibraryBySearch(name) : LoadSystemLibraryByPath(name);
}

}  // namespace Cmm
