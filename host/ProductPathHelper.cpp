#include "host/ProductPathHelper.h"

#include <shlobj.h>
#include <windows.h>

#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "host/AppVLink.h"

namespace Cmm {
namespace {

enum class Source { kSpecialFolder, kTempDirectory, kExecutableDirectory, kAppVLink };
enum class FolderName { kByKind, kVirtualDesktop };

struct BaseDirectory {
  Source source;
  FolderName folder;
  int csidl = 0;
};

constexpr BaseDirectory kBaseDirectories[CProductPathHelper::kBaseCount] = {
    {Source::kSpecialFolder, FolderName::kByKind, CSIDL_APPDATA},
    {Source::kSpecialFolder, FolderName::kByKind, CSIDL_LOCAL_APPDATA},
    {Source::kSpecialFolder, FolderName::kByKind, CSIDL_PROGRAM_FILES},
    {Source::kTempDirectory, FolderName::kByKind},
    {Source::kSpecialFolder, FolderName::kByKind, CSIDL_INTERNET_CACHE},
    {Source::kExecutableDirectory, FolderName::kByKind},
    {Source::kSpecialFolder, FolderName::kByKind, CSIDL_PROGRAM_FILESX86},
    {Source::kSpecialFolder, FolderName::kVirtualDesktop, CSIDL_PROGRAM_FILES},
    {Source::kSpecialFolder, FolderName::kVirtualDesktop, CSIDL_PROGRAM_FILESX86},
    {Source::kAppVLink, FolderName::kVirtualDesktop},
};

constexpr const char* kBinDirectories[] = {"bin", "bin_00", "bin_01", "bin_02", "bin_03", "bin_04", "bin_05"};

const char* FolderNameFor(FolderName folder, uint32_t kind) {
  if (folder == FolderName::kVirtualDesktop) return "VelmVDI";
  return kind == kConnector ? "SuiteBridge" : "Velm";
}

// These give what stands in front of the product's folder name.

bool SpecialFolderPrefix(const FileSystemView& view, int csidl, std::string& prefix) {
  char path[FileSystemView::kPathLimit] = {};
  if (!view.specialFolder(csidl, path)) return false;
  prefix = path;
  prefix += '\\';
  return true;
}

bool TempDirectoryPrefix(const FileSystemView& view, std::string& prefix) {
  char path[FileSystemView::kPathLimit] = {};
  if (!view.tempDirectory(path)) return false;
  prefix = path;
  return true;
}

bool ExecutableDirectoryPrefix(const FileSystemView& view, std::string& prefix) {
  char path[FileSystemView::kPathLimit] = {};
  if (!view.executable(path)) return false;
  const std::string_view program = path;
  prefix = program.substr(0, program.find_last_of("\\/:") + 1);
  return true;
}

bool AppVLinkPrefix(const FileSystemView& view, std::string& prefix) {
  wchar_t desktop[FileSystemView::kPathLimit] = {};
  wchar_t commonDesktop[FileSystemView::kPathLimit] = {};
  const bool hasDesktop = view.specialFolderWide(CSIDL_DESKTOPDIRECTORY, desktop);
  const bool hasCommonDesktop = view.specialFolderWide(CSIDL_COMMON_DESKTOPDIRECTORY, commonDesktop);

  wchar_t link[kAppVLinkPathLimit] = {};
  wchar_t target[kAppVTargetLimit] = {};
  const bool found = FindAppVLink(desktop, link, target) || FindAppVLink(commonDesktop, link, target);
  if (!found && !(hasDesktop && hasCommonDesktop)) return false;

  char narrow[CProductPathHelper::kBaseLimit] = {};
  if (WideCharToMultiByte(CP_UTF8, 0, target, -1, narrow, sizeof narrow, nullptr, nullptr) == 0) return false;
  prefix = CutBehindVdiParent(narrow);
  return true;
}

bool FormPrefix(const FileSystemView& view, const BaseDirectory& base, std::string& prefix) {
  switch (base.source) {
    case Source::kSpecialFolder:
      return SpecialFolderPrefix(view, base.csidl, prefix);
    case Source::kTempDirectory:
      return TempDirectoryPrefix(view, prefix);
    case Source::kExecutableDirectory:
      return ExecutableDirectoryPrefix(view, prefix);
    case Source::kAppVLink:
      return AppVLinkPrefix(view, prefix);
  }
  return false;
}

}  // namespace

int CProductPathHelper::GetProductPath(int index, char** path) {
  if (path) *path = nullptr;
  if (index < 0 || index >= kBaseCount) return kProductPathNoSuchIndex;
  if (!path) return kProductPathNotFormed;

  std::unique_ptr<char[]>& cached = m_paths[static_cast<size_t>(index)];
  if (!cached) {
    const BaseDirectory& base = kBaseDirectories[index];
    std::string text;
    if (!FormPrefix(*m_view, base, text)) return kProductPathNotFormed;
    text += FolderNameFor(base.folder, kind);
    text += '\\';
    if (text.size() >= kBaseLimit) return kProductPathNotFormed;
    std::unique_ptr<char[]> block(new (std::nothrow) char[kBaseLimit]());
    if (!block) return kProductPathNotFormed;
    text.copy(block.get(), text.size());
    cached = std::move(block);
  }
  *path = cached.get();
  return kProductPathOk;
}

int CProductPathHelper::CheckVelmProductInfo(const char* basePath, const char* subDir,
                                             std::vector<ProductRecord>& list) const {
  return Cmm::CheckVelmProductInfo(*m_view, kind, basePath, subDir, list);
}

int CProductPathHelper::ScanBinDirs(const char* base, std::vector<ProductRecord>& list) const {
  if (!base) return 1;
  int result = 1;
  for (const char* subDirectory : kBinDirectories)
    result &= CheckVelmProductInfo(base, subDirectory, list);
  return result;
}

int CProductPathHelper::ScanProductPaths(std::vector<ProductRecord>& list) {
  int result = 1;
  for (int index = 0;; ++index) {
    char* base = nullptr;
    const int formed = GetProductPath(index, &base);
    if (formed == kProductPathNoSuchIndex) return result;
    if (formed != kProductPathOk || !ScanBinDirs(base, list)) result = 0;
  }
}

}  // namespace Cmm
