#include "tools/fake_product/Journal.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

#include "tools/common/Text.h"
#include "tools/fake_product/SystemError.h"

namespace velm_tools {
namespace {

constexpr std::string_view kHeadLine = "velm fake product 1\n";
constexpr std::string_view kKindNames[] = {"directory", "file", "key", "command"};

Journal::Entry ParseLine(std::string_view line, const std::wstring& path) {
  const size_t blank = line.find(' ');
  const auto kind = std::find(std::begin(kKindNames), std::end(kKindNames), line.substr(0, blank));
  if (blank == std::string_view::npos || kind == std::end(kKindNames))
    throw FakeProductError("not a journal of fake products: " + ToUtf8(path));
  Journal::Entry entry{static_cast<Journal::Kind>(kind - std::begin(kKindNames)),
                       FromUtf8(line.substr(blank + 1))};
  // A file is removed by its name in the directory, whatever a hand-edited journal says.
  if (entry.kind == Journal::Kind::kFile && entry.name.find_first_of(L"\\/:") != std::wstring::npos)
    throw FakeProductError("not a journal of fake products: " + ToUtf8(path));
  return entry;
}

std::string ReadAll(HANDLE file, const std::wstring& path) {
  std::string text;
  char block[4096];
  for (;;) {
    DWORD count = 0;
    if (!ReadFile(file, block, sizeof block, &count, nullptr))
      ThrowSystemError("cannot read", path, GetLastError());
    if (count == 0) return text;
    text.append(block, count);
  }
}

}  // namespace

Journal::Journal(const std::wstring& directory) : m_path(PathIn(directory)) {
  m_file.reset(CreateFileW(m_path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                           CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!m_file) ThrowSystemError("cannot create", m_path, GetLastError());
  Write(kHeadLine);
}

void Journal::Note(Kind kind, const std::wstring& name) {
  std::string line(kKindNames[static_cast<size_t>(kind)]);
  line += ' ' + ToUtf8(name) + '\n';
  Write(line);
}

void Journal::Write(std::string_view line) {
  DWORD written = 0;
  if (!WriteFile(m_file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr))
    ThrowSystemError("cannot write", m_path, GetLastError());
}

std::wstring Journal::PathIn(const std::wstring& directory) {
  return directory + L'\\' + std::wstring(kFileName);
}

bool Journal::ExistsIn(const std::wstring& directory) {
  return GetFileAttributesW(PathIn(directory).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<std::vector<Journal::Entry>> Journal::Read(const std::wstring& directory) {
  const std::wstring path = PathIn(directory);
  const Cmm::UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                               nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return std::nullopt;
    ThrowSystemError("cannot open", path, error);
  }
  const std::string text = ReadAll(file.get(), path);
  std::string_view rest = text;
  if (!rest.starts_with(kHeadLine)) throw FakeProductError("not a journal of fake products: " + ToUtf8(path));
  rest.remove_prefix(kHeadLine.size());

  std::vector<Entry> entries;
  // A last line without an end was being written when its process died: what it names may not exist.
  for (size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
    entries.push_back(ParseLine(rest.substr(0, end), path));
    rest.remove_prefix(end + 1);
  }
  return entries;
}

}  // namespace velm_tools
