#include "archive/ArchivePath.h"

#include "archive/ArchiveText.h"

namespace Cmm {

CCmmArchivePath::CCmmArchivePath(const CStringT<wchar_t>& name) {
  if (!name.IsEmpty()) m_names.push_back(name);
}

CCmmArchivePath::CCmmArchivePath(const CCmmArchivePath&) = default;
CCmmArchivePath& CCmmArchivePath::operator=(const CCmmArchivePath&) = default;
CCmmArchivePath::~CCmmArchivePath() = default;

void CCmmArchivePath::AppendName(const CStringT<wchar_t>& name) {
  m_names.push_back(name);
}

void CCmmArchivePath::PopName() {
  if (!m_names.empty()) m_names.pop_back();
}

const CStringT<wchar_t>& CCmmArchivePath::LastName() const {
  return m_names.empty() ? Archive::EmptyName() : m_names.back();
}

const CStringT<wchar_t>& CCmmArchivePath::NameAt(unsigned index) const {
  return index < m_names.size() ? m_names[index] : Archive::EmptyName();
}

size_t CCmmArchivePath::Depth() const {
  return m_names.size();
}

void CCmmArchivePath::ToString(const CStringT<wchar_t>& separator, CStringT<wchar_t>& out) const {
  for (const CStringT<wchar_t>& name : m_names) {
    out += name;
    out += separator;
  }
}

}  // namespace Cmm
