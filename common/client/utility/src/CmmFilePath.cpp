#include "common/client/utility/src/CmmFilePath.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmPathUnits.h"

namespace Cmm {

namespace {

using WideString = CStringT<wchar_t>;

constexpr size_t kNotFound = WideString::npos;

// The units of the drive letter and its colon: 2, or 0 without one.
size_t DriveLength(const WideString& path) {
  if (path.size() < 2 || path[1] != L':') return 0;
  const wchar_t letter = path[0];
  return (letter >= L'A' && letter <= L'Z') || (letter >= L'a' && letter <= L'z') ? 2 : 0;
}

bool AreDrivesEqual(const WideString& a, const WideString& b) {
  return WideString(a, DriveLength(a)).CompareNoCase(WideString(b, DriveLength(b))) == 0;
}

size_t LastSeparator(const WideString& path) {
  return path.find_last_of(FilePath::kSeparators);
}

bool IsAllSeparators(const WideString& text) {
  return std::all_of(text.begin(), text.end(), IsPathSeparator);
}

bool IsDotOrDots(const WideString& name) {
  return name == FilePath::kCurrentDirectory || name == FilePath::kParentDirectory;
}

size_t ExtensionPosition(const WideString& text) {
  return IsDotOrDots(text) ? kNotFound : text.rfind(FilePath::kExtensionSeparator);
}

// One unit in the upper case of the system.
wchar_t ToUpper(wchar_t c) {
  const auto unit = reinterpret_cast<wchar_t*>(static_cast<uintptr_t>(c));
  return static_cast<wchar_t>(reinterpret_cast<uintptr_t>(CharUpperW(unit)));
}

WideString FromAscii(StringPiece piece) {
  WideString text;
  _cstring_set(text, 0, piece.data(), piece.size());
  return text;
}

}  // namespace

const wchar_t FilePath::kSeparators[] = L"\\/";
const wchar_t FilePath::kCurrentDirectory[] = L".";
const wchar_t FilePath::kParentDirectory[] = L"..";
const wchar_t FilePath::kExtensionSeparator = L'.';

FilePath::FilePath() = default;
FilePath::FilePath(const WideString& path) : m_path(path) {}
FilePath::FilePath(const CStringT<char>& utf8) : m_path(A2BT<65001, char, wchar_t>(utf8.GetCData())) {}
FilePath::FilePath(const FilePath&) = default;
FilePath::FilePath(FilePath&&) noexcept = default;
FilePath& FilePath::operator=(const FilePath&) = default;
FilePath& FilePath::operator=(FilePath&&) noexcept = default;
FilePath::~FilePath() = default;

const WideString& FilePath::value() const {
  return m_path;
}

CStringT<char> FilePath::utf8Value() const {
  return A2BT<65001, wchar_t, char>(m_path.GetCData());
}

bool FilePath::empty() const {
  return m_path.empty();
}

void FilePath::clear() {
  m_path.clear();
}

FilePath FilePath::FromWStringHack(const std::wstring& path) {
  return FilePath(WideString(path));
}

std::wstring FilePath::ToWStringHack() const {
  return m_path.GetCData();
}

bool FilePath::IsSeparator(wchar_t c) {
  return IsPathSeparator(c);
}

// ---- Comparison -----------------------------------------------------------------------------------------

bool FilePath::operator==(const FilePath& other) const {
  const size_t drive = DriveLength(m_path);
  if (drive == 0 || DriveLength(other.m_path) == 0) return m_path == other.m_path;
  return AreDrivesEqual(m_path, other.m_path) &&
         m_path.compare(drive, kNotFound, other.m_path, drive, kNotFound) == 0;
}

bool FilePath::operator!=(const FilePath& other) const {
  return !(*this == other);
}

bool FilePath::operator<(const FilePath& other) const {
  return m_path < other.m_path;
}

int FilePath::CompareIgnoreCase(const WideString& a, const WideString& b) {
  const size_t common = std::min(a.size(), b.size());
  for (size_t i = 0; i < common; ++i) {
    const wchar_t upperA = ToUpper(a[i]);
    const wchar_t upperB = ToUpper(b[i]);
    if (upperA != upperB) return upperA < upperB ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool FilePath::CompareEqualIgnoreCase(const WideString& a, const WideString& b) {
  return CompareIgnoreCase(a, b) == 0;
}

bool FilePath::CompareLessIgnoreCase(const WideString& a, const WideString& b) {
  return CompareIgnoreCase(a, b) < 0;
}

// ---- Components -----------------------------------------------------------------------------------------

void FilePath::GetComponents(std::vector<WideString>* out) const {
  if (!out) return;
  out->clear();
  if (empty()) return;

  FilePath current = *this;
  for (FilePath dir = DirName(); current != dir; dir = current.DirName()) {
    const WideString name = current.BaseName().m_path;
    if (!IsAllSeparators(name)) out->push_back(name);
    current = dir;
  }
  const WideString root = current.BaseName().m_path;
  if (!root.empty() && root != kCurrentDirectory) out->push_back(root);
  const size_t drive = DriveLength(current.m_path);
  if (drive > 0) out->push_back(WideString(current.m_path, drive));
  std::reverse(out->begin(), out->end());
}

FilePath FilePath::DirName() const {
  FilePath dir = *this;
  dir.StripSeparators();
  WideString& path = dir.m_path;
  const size_t drive = DriveLength(path);
  const size_t separator = LastSeparator(path);
  if (separator == kNotFound) {
    path.resize(drive);
  } else if (separator == drive) {
    path.resize(drive + 1);  // the root
  } else if (separator == drive + 1 && IsSeparator(path[drive])) {
    path.resize(drive + 2);  // a root of two separators
  } else {
    path.resize(separator);
  }
  dir.StripSeparators();
  if (path.empty()) path = kCurrentDirectory;
  return dir;
}

FilePath FilePath::BaseName() const {
  FilePath base = *this;
  base.StripSeparators();
  WideString& name = base.m_path;
  name.erase(0, DriveLength(name));
  const size_t separator = LastSeparator(name);
  if (separator != kNotFound && separator + 1 < name.size()) name.erase(0, separator + 1);
  return base;
}

bool FilePath::IsParent(const FilePath& child) const {
  return AppendRelativePath(child, nullptr);
}

bool FilePath::AppendRelativePath(const FilePath& child, FilePath* path) const {
  std::vector<WideString> mine;
  std::vector<WideString> others;
  GetComponents(&mine);
  child.GetComponents(&others);
  if (mine.empty() || mine.size() >= others.size()) return false;

  size_t i = 0;
  if (DriveLength(mine[0]) > 0 && DriveLength(others[0]) > 0) {
    if (mine[0].CompareNoCase(others[0]) != 0) return false;
    i = 1;
  }
  for (; i < mine.size(); ++i) {
    if (mine[i] != others[i]) return false;
  }
  for (; path && i < others.size(); ++i)
    *path = path->Append(others[i]);
  return true;
}

bool FilePath::IsAbsolute() const {
  const size_t drive = DriveLength(m_path);
  if (drive > 0) return m_path.size() > drive && IsSeparator(m_path[drive]);
  return m_path.size() >= 2 && IsSeparator(m_path[0]) && IsSeparator(m_path[1]);
}

bool FilePath::ReferencesParent() const {
  std::vector<WideString> components;
  GetComponents(&components);
  return std::find(components.begin(), components.end(), kParentDirectory) != components.end();
}

// ---- Extension ------------------------------------------------------------------------------------------

WideString FilePath::Extension() const {
  const WideString base = BaseName().m_path;
  const size_t dot = ExtensionPosition(base);
  return dot == kNotFound ? WideString() : WideString(base.substr(dot));
}

FilePath FilePath::RemoveExtension() const {
  if (Extension().empty()) return *this;
  return FilePath(WideString(m_path, ExtensionPosition(m_path)));
}

// Whether there is a base name that can take an extension.
bool FilePath::HasNameToExtend() const {
  const FilePath base = BaseName();
  return !base.empty() && !IsDotOrDots(base.m_path);
}

FilePath FilePath::InsertBeforeExtension(const WideString& suffix) const {
  if (suffix.empty()) return *this;
  if (!HasNameToExtend()) return FilePath();
  return FilePath(RemoveExtension().m_path + suffix + Extension());
}

FilePath FilePath::InsertBeforeExtensionASCII(StringPiece suffix) const {
  return InsertBeforeExtension(FromAscii(suffix));
}

FilePath FilePath::ReplaceExtension(const WideString& ext) const {
  if (!HasNameToExtend()) return FilePath();
  FilePath replaced = RemoveExtension();
  if (ext.empty() || (ext.size() == 1 && ext[0] == kExtensionSeparator)) return replaced;
  if (ext[0] != kExtensionSeparator) replaced.m_path += kExtensionSeparator;
  replaced.m_path += ext;
  return replaced;
}

bool FilePath::MatchesExtension(const WideString& ext) const {
  return CompareEqualIgnoreCase(Extension(), ext);
}

// ---- Building -------------------------------------------------------------------------------------------

FilePath FilePath::Append(const WideString& component) const {
  if (m_path == kCurrentDirectory) return FilePath(component);
  FilePath path = StripTrailingSeparators();
  if (component.empty()) return path;
  const WideString& text = path.m_path;
  const bool needsSeparator =
      !text.empty() && !IsSeparator(text[text.size() - 1]) && text.size() != DriveLength(text);
  if (needsSeparator) path.m_path += kSeparators[0];
  path.m_path += component;
  return path;
}

FilePath FilePath::Append(const FilePath& component) const {
  return Append(component.m_path);
}

FilePath FilePath::AppendASCII(StringPiece component) const {
  return Append(FromAscii(component));
}

FilePath FilePath::StripTrailingSeparators() const {
  FilePath stripped = *this;
  stripped.StripSeparators();
  return stripped;
}

void FilePath::StripSeparators() {
  const size_t start = DriveLength(m_path) + 1;  // a separator before this position is a root
  size_t stripped = kNotFound;
  for (size_t pos = m_path.size(); pos > start && IsSeparator(m_path[pos - 1]); --pos) {
    // The second of exactly two leading separators stays; as the second of three or more it goes as well.
    if (pos == start + 1 && stripped != start + 2 && IsSeparator(m_path[start - 1])) continue;
    m_path.resize(pos - 1);
    stripped = pos;
  }
}

FilePath FilePath::NormalizeWindowsPathSeparators() const {
  FilePath normalized = *this;
  std::replace(normalized.m_path.begin(), normalized.m_path.end(), L'/', L'\\');
  return normalized;
}

}  // namespace Cmm
