#include "tools/fake_product/FakeProduct.h"

#include <shlobj.h>
#include <windows.h>

#include <ranges>
#include <span>
#include <string_view>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"
#include "host/ProductPathHelper.h"
#include "sdk/SdkImplHelper.h"
#include "tools/common/Text.h"
#include "tools/fake_product/Journal.h"
#include "tools/fake_product/Registration.h"
#include "tools/fake_product/SystemError.h"
#include "tools/fake_product/VersionedImage.h"

namespace velm_tools {
namespace {

constexpr std::string_view kVersionedFile = "vVideoApp.dll";
constexpr std::string_view kStandInText = "Stands in for a file of the product. It can be removed.\r\n";

bool IsGone(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

void RemoveOneDirectory(const std::wstring& path) {
  if (RemoveDirectoryW(path.c_str())) return;
  const DWORD error = GetLastError();
  if (error == ERROR_DIR_NOT_EMPTY) return;  // somebody else's files live there now
  if (!IsGone(error)) ThrowSystemError("cannot remove", path, error);
}

void RemoveOneFile(const std::wstring& path) {
  if (DeleteFileW(path.c_str())) return;
  const DWORD error = GetLastError();
  if (!IsGone(error)) ThrowSystemError("cannot remove", path, error);
}

// Creates the directory with those above it that are missing; `made` names what was created, topmost first.
void CreateDirectories(const std::wstring& path, std::vector<std::wstring>& made) {
  if (CreateDirectoryW(path.c_str(), nullptr)) {
    made.push_back(path);
    return;
  }
  const DWORD error = GetLastError();
  if (error == ERROR_ALREADY_EXISTS && (GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_DIRECTORY)) return;
  const size_t separator = path.find_last_of(L"\\/");
  if (error != ERROR_PATH_NOT_FOUND || separator == std::wstring::npos || separator == 0)
    ThrowSystemError("cannot create", path, error);
  CreateDirectories(path.substr(0, separator), made);
  if (!CreateDirectoryW(path.c_str(), nullptr)) ThrowSystemError("cannot create", path, GetLastError());
  made.push_back(path);
}

void CreateNewFile(const std::wstring& directory, const std::wstring& name,
                   std::span<const unsigned char> content, Journal& journal) {
  const std::wstring path = directory + L'\\' + name;
  const Cmm::UniqueFileHandle file(
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) ThrowSystemError("cannot create", path, GetLastError());
  journal.Note(Journal::Kind::kFile, name);
  DWORD written = 0;
  if (!WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr))
    ThrowSystemError("cannot write", path, GetLastError());
}

void Install(const FakeProductOptions& options, const std::wstring& directory, Journal& journal) {
  const std::vector<unsigned char> versioned = ImageOfVersion(options.version);
  const std::vector<unsigned char> standIn(kStandInText.begin(), kStandInText.end());
  for (const Cmm::RequiredFile& file : Cmm::RequiredFiles(options.kind))
    CreateNewFile(directory, FromUtf8(file.name), file.name == kVersionedFile ? versioned : standIn, journal);
  if (options.registerCommand) RegisterCommand(directory + L"\\Velm.exe", journal);
}

void RemoveEntry(const std::wstring& directory, const Journal::Entry& entry) {
  switch (entry.kind) {
    case Journal::Kind::kDirectory:
      return RemoveOneDirectory(entry.name);
    case Journal::Kind::kFile:
      return RemoveOneFile(directory + L'\\' + entry.name);
    case Journal::Kind::kKey:
      return RemoveKey(entry.name);
    case Journal::Kind::kCommand:
      return RemoveCommand(entry.name);
  }
}

// After a failed installation, whose error is the one to report.
void TakeBack(const std::wstring& directory, const std::vector<std::wstring>& madeDirectories) {
  try {
    FakeProduct::RemoveFrom(directory);
  } catch (const FakeProductError&) {
    return;  // the journal says what is left
  }
  for (const std::wstring& path : std::views::reverse(madeDirectories))
    RemoveDirectoryW(path.c_str());  // those that no journal came to name
}

}  // namespace

FakeProduct::FakeProduct(const FakeProductOptions& options)
    : m_directory(options.directory.empty() ? DefaultDirectory() : options.directory) {
  RemoveFrom(m_directory);
  std::vector<std::wstring> made;
  try {
    CreateDirectories(m_directory, made);
    Journal journal(m_directory);
    for (const std::wstring& path : made)
      journal.Note(Journal::Kind::kDirectory, path);
    Install(options, m_directory, journal);
  } catch (const FakeProductError&) {
    TakeBack(m_directory, made);
    throw;
  }
  m_installed = true;
}

FakeProduct::~FakeProduct() {
  try {
    Remove();
  } catch (const FakeProductError&) {
    // The journal still says what is left.
  }
}

void FakeProduct::Remove() {
  if (!m_installed) return;
  RemoveFrom(m_directory);
  m_installed = false;
}

std::wstring FakeProduct::DefaultDirectory() {
  wchar_t path[MAX_PATH] = {};
  if (!SHGetSpecialFolderPathW(nullptr, path, CSIDL_APPDATA, TRUE))
    throw FakeProductError("cannot find the current user's application data folder");
  return std::wstring(path) + L"\\Velm\\bin";
}

bool FakeProduct::RemoveFrom(const std::wstring& directory) {
  const std::optional<std::vector<Journal::Entry>> entries = Journal::Read(directory);
  if (!entries) return false;
  // The journal itself goes when only directories are left, one of which holds it.
  const auto isDirectory = [](const Journal::Entry& entry) {
    return entry.kind == Journal::Kind::kDirectory;
  };
  for (const Journal::Entry& entry : std::views::reverse(*entries))
    if (!isDirectory(entry)) RemoveEntry(directory, entry);
  RemoveOneFile(Journal::PathIn(directory));
  for (const Journal::Entry& entry : std::views::reverse(*entries))
    if (isDirectory(entry)) RemoveEntry(directory, entry);
  return true;
}

std::optional<std::wstring> FakeProduct::FindForeignProduct() {
  std::vector<Cmm::ProductRecord> products;
  Cmm::CProductPathHelper().ScanProductPaths(products);
  for (const Cmm::ProductRecord& product : products)
    if (std::wstring directory = FromAnsi(product.path); !Journal::ExistsIn(directory)) return directory;

  char registered[Velm3rdSDK::CSdkImplHelper::kInstallPathLimit] = {};
  if (Velm3rdSDK::CSdkImplHelper().GetInstallPathViaVelmMtg(nullptr, registered))
    if (std::wstring directory = FromAnsi(registered); !Journal::ExistsIn(directory)) return directory;
  return std::nullopt;
}

}  // namespace velm_tools
