#include "tools/fake_product/Registration.h"

#include <windows.h>

#include <optional>
#include <string_view>

#include "common/client/utility/src/UniqueHandle.h"
#include "tools/common/Text.h"
#include "tools/fake_product/Journal.h"
#include "tools/fake_product/SystemError.h"

namespace velm_tools {
namespace {

constexpr std::wstring_view kCommandKey = L"velmmtg\\shell\\open\\command";

// A hive, by the short name that stands in front of a key's path in messages and in the journal.
struct Hive {
  std::wstring_view name;
  HKEY key;
};
const Hive kUser{L"HKCU", HKEY_CURRENT_USER};
const Hive kClasses{L"HKCR", HKEY_CLASSES_ROOT};

std::wstring FullName(const Hive& hive, std::wstring_view path) {
  return std::wstring(hive.name) + L'\\' + std::wstring(path);
}

struct Key {
  const Hive& hive;
  std::wstring path;
};

Key ParseFullName(const std::wstring& fullName) {
  const size_t separator = fullName.find(L'\\');
  for (const Hive* hive : {&kUser, &kClasses})
    if (separator != std::wstring::npos && fullName.substr(0, separator) == hive->name)
      return {*hive, fullName.substr(separator + 1)};
  throw FakeProductError("not a key of a fake product: " + ToUtf8(fullName));
}

bool IsMissing(LSTATUS status) {
  return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
}

std::optional<std::wstring> ReadDefault(const Hive& hive, const std::wstring& path) {
  DWORD size = 0;
  LSTATUS status = RegGetValueW(hive.key, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &size);
  std::wstring text(size / sizeof(wchar_t), L'\0');
  if (status == ERROR_SUCCESS)
    status = RegGetValueW(hive.key, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text.data(), &size);
  if (IsMissing(status)) return std::nullopt;
  if (status != ERROR_SUCCESS)
    ThrowSystemError("cannot read", FullName(hive, path), static_cast<DWORD>(status));
  text.resize(text.find_last_not_of(L'\0') + 1);
  return text;
}

// Creates the key level by level, since each level that was not there is to go again.
Cmm::UniqueRegistryKey CreateKey(const Hive& hive, const std::wstring& path, Journal& journal) {
  Cmm::UniqueRegistryKey key;
  for (size_t end = 0; end != std::wstring::npos;) {
    end = path.find(L'\\', end == 0 ? 0 : end + 1);
    const std::wstring level = path.substr(0, end);
    DWORD disposition = 0;
    const LSTATUS status = RegCreateKeyExW(hive.key, level.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                           KEY_READ | KEY_SET_VALUE, nullptr, key.put(), &disposition);
    if (status != ERROR_SUCCESS)
      ThrowSystemError("cannot create", FullName(hive, level), static_cast<DWORD>(status));
    if (disposition == REG_CREATED_NEW_KEY) journal.Note(Journal::Kind::kKey, FullName(hive, level));
  }
  return key;
}

void WriteCommand(const Hive& hive, const std::wstring& path, const std::wstring& command, Journal& journal) {
  if (const std::optional<std::wstring> present = ReadDefault(hive, path))
    throw FakeProductError("a client is registered already under " + ToUtf8(FullName(hive, path)) + ": " +
                           ToUtf8(*present));
  const Cmm::UniqueRegistryKey key = CreateKey(hive, path, journal);
  const auto* bytes = reinterpret_cast<const BYTE*>(command.c_str());
  const auto size = static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t));
  const LSTATUS status = RegSetValueExW(key.get(), nullptr, 0, REG_SZ, bytes, size);
  if (status != ERROR_SUCCESS)
    ThrowSystemError("cannot write", FullName(hive, path), static_cast<DWORD>(status));
  journal.Note(Journal::Kind::kCommand, FullName(hive, path) + L'\t' + command);
}

}  // namespace

void RegisterCommand(const std::wstring& program, Journal& journal) {
  const std::wstring command = L'"' + program + L"\" \"--url=%1\"";
  const std::wstring classesPath(kCommandKey);
  if (const std::optional<std::wstring> present = ReadDefault(kClasses, classesPath))
    throw FakeProductError("a client is registered already: " + ToUtf8(*present));
  WriteCommand(kUser, L"Software\\Classes\\" + classesPath, command, journal);
  // Not every system merges the user's classes into the class root.
  if (ReadDefault(kClasses, classesPath) != command) WriteCommand(kClasses, classesPath, command, journal);
}

void RemoveCommand(const std::wstring& entry) {
  const size_t tab = entry.find(L'\t');
  const Key key = ParseFullName(entry.substr(0, tab));
  if (tab == std::wstring::npos || ReadDefault(key.hive, key.path) != entry.substr(tab + 1)) return;
  const LSTATUS status = RegDeleteKeyValueW(key.hive.key, key.path.c_str(), nullptr);
  if (status != ERROR_SUCCESS && !IsMissing(status))
    ThrowSystemError("cannot remove the value of", FullName(key.hive, key.path), static_cast<DWORD>(status));
}

void RemoveKey(const std::wstring& entry) {
  const Key key = ParseFullName(entry);
  DWORD subkeys = 0;
  DWORD values = 0;
  {
    Cmm::UniqueRegistryKey open;
    if (RegOpenKeyExW(key.hive.key, key.path.c_str(), 0, KEY_READ, open.put()) != ERROR_SUCCESS) return;
    RegQueryInfoKeyW(open.get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values, nullptr,
                     nullptr, nullptr, nullptr);
  }
  if (subkeys != 0 || values != 0) return;
  const LSTATUS status = RegDeleteKeyW(key.hive.key, key.path.c_str());
  if (status != ERROR_SUCCESS && !IsMissing(status))
    ThrowSystemError("cannot remove", entry, static_cast<DWORD>(status));
}

}  // namespace velm_tools
