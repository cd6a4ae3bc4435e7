#include "tests/support/DirectoryLink.h"

#include <windows.h>

#include <optional>
#include <string>
#include <utility>

#include "tests/support/ChildProcess.h"

namespace velm_test {
namespace {

// Wine tells the name that a path has on the system below it, and runs that system's programs. None on
// Windows.
std::optional<std::string> NameOnTheSystemBelow(const std::filesystem::path& path) {
  using UnixFileName = char*(CDECL*)(const wchar_t*);
  const auto unixFileName = reinterpret_cast<UnixFileName>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  char* const name = unixFileName ? unixFileName(path.c_str()) : nullptr;
  if (!name) return {};
  std::string copy = name;
  HeapFree(GetProcessHeap(), 0, name);
  return copy;
}

}  // namespace

DirectoryLink::DirectoryLink(std::filesystem::path link, const std::filesystem::path& target)
    : m_path(std::move(link)) {
  const std::optional<std::string> linkBelow = NameOnTheSystemBelow(m_path);
  const std::optional<std::string> targetBelow = NameOnTheSystemBelow(target);
  if (linkBelow && targetBelow)
    ChildProcess(L"Z:\\bin\\ln", {"-s", "-n", *targetBelow, *linkBelow}).Wait();
  else
    ChildProcess(L"C:\\Windows\\System32\\cmd.exe", {"/c", "mklink", "/J", m_path.string(), target.string()})
        .Wait();
}

DirectoryLink::~DirectoryLink() {
  // Also a link whose target is gone, which Wine shows to nobody.
  if (const std::optional<std::string> below = NameOnTheSystemBelow(m_path))
    ChildProcess(L"Z:\\bin\\rm", {"-f", *below}).Wait();
  else
    RemoveDirectoryW(m_path.c_str());
}

bool DirectoryLink::Exists() const {
  constexpr DWORD kBits = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  const DWORD attributes = GetFileAttributesW(m_path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kBits) == kBits;
}

bool SystemRemovesDirectoryLinks(const std::filesystem::path& scratch) {
  const std::filesystem::path target = scratch / L"link probe target";
  std::filesystem::create_directories(target / L"content");
  const DirectoryLink link(scratch / L"link probe", target);
  RemoveDirectoryW(link.Path().c_str());
  const bool isRemoved = !link.Exists();
  std::filesystem::remove(target / L"content");
  std::filesystem::remove(target);
  return isRemoved;
}

}  // namespace velm_test
