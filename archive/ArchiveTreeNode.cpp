#include "archive/ArchiveTreeNode.h"

#include "archive/ArchivePath.h"
#include "archive/ArchiveText.h"

namespace Cmm::Archive {
namespace {

bool IsSameAsciiName(const CStringT<wchar_t>& wide, std::string_view ascii) {
  if (wide.GetLength() != ascii.size()) return false;
  for (size_t i = 0; i < ascii.size(); ++i) {
    if (wide[i] != static_cast<unsigned char>(ascii[i])) return false;
  }
  return true;
}

}  // namespace

CCmmArchiveTreeNode::CCmmArchiveTreeNode() = default;

CCmmArchiveTreeNode::~CCmmArchiveTreeNode() {
  for (CCmmArchiveTreeNode* child = m_firstChild; child;) {
    CCmmArchiveTreeNode* next = child->m_nextSibling;
    delete child;
    child = next;
  }
}

const CStringT<wchar_t>& CCmmArchiveTreeNode::GetName() const {
  return m_name ? m_name->wide : EmptyName();
}

void CCmmArchiveTreeNode::SetName(const CStringT<wchar_t>& name) {
  auto both = std::make_shared<Name>();
  both->wide = name;
  Utf8FromWide(name.c_str(), name.GetLength(), both->utf8);
  m_name = std::move(both);
}

int CCmmArchiveTreeNode::AppendChild(CCmmArchiveTreeNode* child) {
  if (!child) return 0;
  if (!m_isContainer) {
    delete child;
    return 0;
  }
  if (!m_firstChild) {
    m_firstChild = child;
  } else {
    m_lastChild->m_nextSibling = child;
  }
  m_lastChild = child;
  return 1;
}

CCmmArchiveTreeNode* CCmmArchiveTreeNode::Duplicate(int flag) const {
  auto copy = std::make_unique<CCmmArchiveTreeNode>();
  copy->m_name = m_name;
  copy->m_isContainer = m_isContainer;
  copy->m_isText = m_isText;
  copy->m_isEssential = m_isEssential;
  copy->m_count = m_count;
  copy->m_data = m_data;
  for (const CCmmArchiveTreeNode* child = m_firstChild; child; child = child->m_nextSibling)
    copy->AppendChild(child->Duplicate(flag));
  return copy.release();
}

ICmmArchiveObject* CCmmArchiveTreeNode::DuplicateNode(ICmmArchiveObject* newParent) {
  auto* parent = static_cast<CCmmArchiveTreeNode*>(newParent);
  if (!parent || !parent->IsContainer()) return nullptr;
  CCmmArchiveTreeNode* copy = Duplicate(0);
  parent->AppendChild(copy);
  return copy;
}

CCmmArchiveTreeNode* CCmmArchiveTreeNode::FindFrom(CCmmArchiveTreeNode* node, const CStringT<wchar_t>& name) {
  if (name.IsEmpty()) return node;
  while (node && node->GetName() != name)
    node = node->m_nextSibling;
  return node;
}

ICmmArchiveObject* CCmmArchiveTreeNode::GetFirstChild(const CStringT<wchar_t>& name) {
  return FindFrom(m_firstChild, name);
}

ICmmArchiveObject* CCmmArchiveTreeNode::GetNextSibling(const CStringT<wchar_t>& name) {
  return FindFrom(m_nextSibling, name);
}

CCmmArchiveTreeNode* CCmmArchiveTreeNode::GetNode(const CCmmArchivePath& path) {
  CCmmArchiveTreeNode* node = this;
  for (unsigned i = 0; node && i < path.Depth(); ++i)
    node = FindFrom(node->m_firstChild, path.NameAt(i));
  return node;
}

CCmmArchiveVarivant* CCmmArchiveTreeNode::GetLeafItem(const CCmmArchivePath& path) {
  CCmmArchiveTreeNode* node = GetNode(path);
  return node && !node->IsContainer() ? &node->m_data : nullptr;
}

ICmmArchiveObject* CCmmArchiveTreeNode::GetTrunkItem(const CCmmArchivePath& path) {
  CCmmArchiveTreeNode* node = GetNode(path);
  return node && node->IsContainer() ? node : nullptr;
}

CCmmArchiveVarivant* CCmmArchiveTreeNode::FindLeaf(std::string_view name) {
  CCmmArchiveTreeNode* node = m_firstChild;
  while (node && !IsSameAsciiName(node->GetName(), name))
    node = node->m_nextSibling;
  return node && !node->IsContainer() ? &node->m_data : nullptr;
}

}  // namespace Cmm::Archive
