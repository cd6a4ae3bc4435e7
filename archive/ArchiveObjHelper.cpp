#include "archive/ArchiveObjHelper.h"

#include "archive/ArchiveService.h"
#include "archive/ArchiveText.h"

namespace Cmm {
namespace {

ICmmArchiveObject* InstanceOf(const ICmmArchiveObjWritter* writter) {
  return static_cast<const CCmmArchiveObjWritter*>(writter)->GetArchiveObject();
}

ICmmArchiveObject* InstanceOf(const ICmmArchiveObjReader* reader) {
  return static_cast<const CCmmArchiveObjReader*>(reader)->GetArchiveObject();
}

}  // namespace

CCmmArchiveObjHelper::CCmmArchiveObjHelper(const char* packageName)
    : m_writter(MakeArchiveObjWritter(packageName)) {}

CCmmArchiveObjHelper::CCmmArchiveObjHelper(const unsigned char* data, unsigned size)
    : m_reader(MakeArchiveObjReader(data, size)) {}

CCmmArchiveObjHelper::~CCmmArchiveObjHelper() {
  FreeArchiveObjWritter(m_writter);
  FreeArchiveObjReader(m_reader);
}

const CStringT<wchar_t>& CCmmArchiveObjHelper::GetPackageName() const {
  if (m_reader) return InstanceOf(m_reader)->GetName();
  if (m_writter) return InstanceOf(m_writter)->GetName();
  return Archive::EmptyName();
}

ICmmArchiveStream* CCmmArchiveObjHelper::Flattern() const {
  if (!m_writter) return nullptr;
  return CCmmArchiveService::Flattern(InstanceOf(m_writter), ICmmArchiveStream::StreamType_Xml);
}

}  // namespace Cmm
