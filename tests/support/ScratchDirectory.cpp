#include "tests/support/ScratchDirectory.h"

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace velm_test {
namespace {

std::wstring LongForm(const std::filesystem::path& path) {
  return L"\\\\?\\" + path.wstring();
}

std::filesystem::path UniquePath() {
  static unsigned count = 0;
  wchar_t temp[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, temp);
  return std::wstring(temp) + L"velm_test_" + std::to_wstring(GetCurrentProcessId()) + L"_" +
         std::to_wstring(++count);
}

// std::filesystem::remove_all does not get along with the long form of paths.
void RemoveTree(const std::wstring& path) {
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = entry.cFileName;
    if (name == L"." || name == L"..") continue;
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
      RemoveTree(path + L'\\' + name);
    else
      DeleteFileW((path + L'\\' + name).c_str());
  } while (FindNextFileW(search, &entry));
  FindClose(search);
  RemoveDirectoryW(path.c_str());
}

}  // namespace

ScratchDirectory::ScratchDirectory() : m_path(UniquePath()) {
  RemoveTree(LongForm(m_path));  // of a process that died and had the same number
  std::filesystem::create_directories(m_path);
}

ScratchDirectory::~ScratchDirectory() {
  RemoveTree(LongForm(m_path));
}

std::filesystem::path ScratchDirectory::MakeDirectory(std::wstring_view relative) const {
  const std::filesystem::path path = m_path / relative;
  std::filesystem::create_directories(path);
  return path;
}

std::filesystem::path ScratchDirectory::MakeFile(std::wstring_view relative, std::string_view content) const {
  const std::filesystem::path path = m_path / relative;
  std::filesystem::create_directories(path.parent_path());
  WriteFile(path, content);
  return path;
}

std::filesystem::path MakeDirectoryOfLength(const std::filesystem::path& parent, size_t length) {
  constexpr size_t kLongestName = 200;
  std::wstring path = parent.wstring();
  while (path.size() < length) {
    const size_t missing = length - path.size() - 1;
    // Never leaves a single character over, which a separator alone would have to fill.
    const size_t name = missing <= kLongestName ? missing : std::min(kLongestName, missing - 2);
    if (name == 0) throw std::invalid_argument("no directory name fits into one character");
    path += L'\\' + std::wstring(name, L'd');
    if (!CreateDirectoryW(LongForm(path).c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
      throw std::runtime_error("cannot create a long directory");
  }
  return path;
}

void WriteFile(const std::filesystem::path& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace velm_test
