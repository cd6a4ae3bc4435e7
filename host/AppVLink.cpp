#include "host/AppVLink.h"

#include <io.h>
#include <shlobj.h>
#include <windows.h>
#include <wrl/client.h>

#include <optional>

#include "common/client/utility/src/UniqueHandle.h"
#include "host/FileSystemView.h"

namespace Cmm {
namespace {

constexpr std::wstring_view kLocalAppData = L"%LOCALAPPDATA%";

struct FileSearchTraits {
  using Type = intptr_t;
  static Type Empty() { return -1; }
  static void Release(Type value) { _findclose(value); }
};
using UniqueFileSearch = UniqueResource<FileSearchTraits>;

// Makes a directory the process's current one for its own lifetime.
class CurrentDirectoryScope {
 public:
  explicit CurrentDirectoryScope(const wchar_t* directory) {
    m_previous.resize(GetCurrentDirectoryW(0, nullptr));
    m_previous.resize(GetCurrentDirectoryW(static_cast<DWORD>(m_previous.size()), m_previous.data()));
    m_entered = SetCurrentDirectoryW(directory) != FALSE;
  }
  CurrentDirectoryScope(const CurrentDirectoryScope&) = delete;
  CurrentDirectoryScope& operator=(const CurrentDirectoryScope&) = delete;
  ~CurrentDirectoryScope() {
    if (m_entered) SetCurrentDirectoryW(m_previous.c_str());
  }

  bool Entered() const { return m_entered; }

 private:
  std::wstring m_previous;
  bool m_entered = false;
};

void DebugText(std::wstring_view words, std::wstring_view value) {
  std::wstring text(words);
  text += value;
  OutputDebugStringW(text.c_str());
}

void CopyCut(wchar_t* destination, size_t limit, std::wstring_view text) {
  const size_t count = text.copy(destination, limit - 1);
  destination[count] = L'\0';
}

// The target as the link holds it, with its environment variables unexpanded.
std::optional<std::wstring> ReadLinkTarget(const wchar_t* linkPath) {
  Microsoft::WRL::ComPtr<IShellLinkW> link;
  Microsoft::WRL::ComPtr<IPersistFile> file;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER,
                              IID_PPV_ARGS(link.GetAddressOf()))))
    return std::nullopt;
  if (FAILED(link.As(&file)) || FAILED(file->Load(linkPath, 0))) return std::nullopt;

  const DWORD quietly = SLR_NO_UI | SLR_NOUPDATE | SLR_NOSEARCH | SLR_NOTRACK | SLR_NOLINKINFO;
  wchar_t target[MAX_PATH] = {};
  wchar_t description[MAX_PATH] = {};  // read because a link without a readable one is refused
  if (FAILED(link->Resolve(nullptr, quietly)) ||
      FAILED(link->GetPath(target, MAX_PATH, nullptr, SLGP_RAWPATH)) ||
      FAILED(link->GetDescription(description, MAX_PATH)))
    return std::nullopt;
  return target;
}

}  // namespace

bool IsAppVClientTarget(std::wstring_view target) {
  return target.find(L"\\Microsoft\\AppV\\Client\\") != std::wstring_view::npos &&
         target.find(L"\\VelmVDI\\bin\\Velm.exe") != std::wstring_view::npos;
}

std::wstring ExpandLocalAppData(std::wstring_view target, std::wstring_view localAppData) {
  std::wstring expanded(target);
  for (size_t at = expanded.find(kLocalAppData); at != std::wstring::npos;
       at = expanded.find(kLocalAppData, at + localAppData.size()))
    expanded.replace(at, kLocalAppData.size(), localAppData);
  return expanded;
}

std::string_view CutBehindVdiParent(std::string_view target) {
  const size_t at = target.find("\\VelmVDI");
  return at == std::string_view::npos ? target : target.substr(0, at + 1);
}

bool ResolveAppVLink(const wchar_t* linkPath, wchar_t* target) {
  if (!linkPath || !target) return false;
  OutputDebugStringW(linkPath);
  std::optional<std::wstring> path = ReadLinkTarget(linkPath);
  if (!path) return false;
  DebugText(L"real path ", *path);
  if (!IsAppVClientTarget(*path)) return false;
  if (path->find(kLocalAppData) != std::wstring::npos) {
    wchar_t folder[FileSystemView::kPathLimit] = {};
    if (FileSystemView::OfThisSystem().specialFolderWide(CSIDL_LOCAL_APPDATA, folder))
      path = ExpandLocalAppData(*path, folder);
  }
  CopyCut(target, kAppVTargetLimit, *path);
  return true;
}

uint32_t FindAppVLink(const wchar_t* directory, wchar_t* linkPath, wchar_t* target) {
  if (!directory || !linkPath || !target) return 0;
  const CurrentDirectoryScope scope(directory);
  if (!scope.Entered()) {
    DebugText(L"failed to swtich to dir", directory);  // the word stands like this in the debugger's text
    return 0;
  }
  _wfinddata_t match;
  const UniqueFileSearch search(_wfindfirst(L"*.lnk", &match));
  if (!search) return 0;
  do {
    const std::wstring path = std::wstring(directory) + L'\\' + match.name;
    if (!ResolveAppVLink(path.c_str(), target)) continue;
    CopyCut(linkPath, kAppVLinkPathLimit, path);
    DebugText(L"found a velm appv lnk", path);
    return 1;
  } while (_wfindnext(search.get(), &match) == 0);
  return 0;
}

}  // namespace Cmm
