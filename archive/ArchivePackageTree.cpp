#include "archive/ArchivePackageTree.h"

#include <tinyxml2.h>

namespace Cmm::Archive {

CCmmArchivePackageTree::CCmmArchivePackageTree() = default;
CCmmArchivePackageTree::~CCmmArchivePackageTree() = default;

CCmmArchiveTreeNode* CCmmArchivePackageTree::GetRoot() {
  if (!m_root) {
    m_root = std::make_unique<CCmmArchiveTreeNode>();
    m_root->SetAsContainer(1);
  }
  return m_root.get();
}

CCmmArchivePackageTree* CCmmArchivePackageTree::DuplicateTree(int flag) const {
  auto copy = std::make_unique<CCmmArchivePackageTree>();
  copy->m_name = m_name;
  copy->m_version = m_version;
  if (m_root) copy->m_root.reset(m_root->Duplicate(flag));
  return copy.release();
}

ICmmArchiveStream* CCmmArchivePackageTree::Flattern(ICmmArchiveStream::StreamType type) {
  if (type != ICmmArchiveStream::StreamType_Xml || !m_root) return nullptr;
  tinyxml2::XMLElement* element = m_root->ToXmlElement(nullptr);
  if (!element) return nullptr;
  element->SetAttribute("version", m_version);
  return new CCmmArchiveXmlStream(element, 1);
}

int CCmmArchivePackageTree::ReadFromStream(ICmmArchiveStream* stream, ICmmArchiveStream::StreamType type) {
  if (type == ICmmArchiveStream::StreamType_Byte) return -1;
  if (type != ICmmArchiveStream::StreamType_Xml) return 0;
  const auto* xml = dynamic_cast<CCmmArchiveXmlStream*>(stream);
  if (!xml || !xml->GetXmlElement()) return -1;
  return GetRoot()->LoadChildrenFromXml(xml->GetXmlElement()) ? 1 : -1;
}

}  // namespace Cmm::Archive
