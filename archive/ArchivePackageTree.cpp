#include "archive/ArchivePackageTree.h"

#include <tinyxml2.h>

#include "archive/ArchiveText.h"

namespace Cmm::Archive {

CCmmArchivePackageTree::CCmmArchivePackageTree() = default;
CCmmArchivePackageTree::~CCmmArchivePackageTree() = default;

const CStringT<wchar_t>& CCmmArchivePackageTree::GetName() const {
  return m_name ? *m_name : EmptyName();
}

void CCmmArchivePackageTree::SetName(const CStringT<wchar_t>& name) {
  m_name = std::make_shared<const CStringT<wchar_t>>(name);
}

int CCmmArchivePackageTree::GetVersion() const {
  return m_version;
}

void CCmmArchivePackageTree::SetVersion(int version) {
  m_version = version;
}

CCmmArchiveTreeNode* CCmmArchivePackageTree::GetRoot() {
  if (!m_root) {
    m_root.reset(new CCmmArchiveTreeNode);
    m_root->SetAsContainer(1);
  }
  return m_root.get();
}

CCmmArchivePackageTree* CCmmArchivePackageTree::DuplicateTree(int) const {
  auto copy = std::make_unique<CCmmArchivePackageTree>();
  copy->m_name = m_name;
  copy->m_version = m_version;
  if (m_root) copy->m_root = m_root->DuplicateInBlock(copy->m_block);
  return copy.release();
}

ICmmArchiveStream* CCmmArchivePackageTree::Flattern(ICmmArchiveStream::StreamType type) {
  if (type != ICmmArchiveStream::StreamType_Xml || !m_root) return nullptr;
  tinyxml2::XMLElement* element = m_root->ToXmlElement(nullptr);
  if (!element) return nullptr;
  element->SetAttribute(CCmmArchiveTreeNode::kVersionAttribute, m_version);
  return new CCmmArchiveXmlStream(element, 1);
}

bool CCmmArchivePackageTree::Print(tinyxml2::XMLPrinter& printer) {
  if (!m_root || !m_root->IsContainer()) return false;
  m_root->PrintPackage(printer, m_version);
  return true;
}

int CCmmArchivePackageTree::ReadFromStream(ICmmArchiveStream* stream, ICmmArchiveStream::StreamType type) {
  if (type == ICmmArchiveStream::StreamType_Byte) return -1;
  if (type != ICmmArchiveStream::StreamType_Xml) return 0;
  const auto* xml = dynamic_cast<CCmmArchiveXmlStream*>(stream);
  if (!xml || !xml->GetXmlElement()) return -1;
  return GetRoot()->LoadChildrenFromXml(xml->GetXmlElement()) ? 1 : -1;
}

}  // namespace Cmm::Archive
