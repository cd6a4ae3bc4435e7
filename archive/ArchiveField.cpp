#include "archive/ArchiveField.h"

#include <algorithm>
#include <string_view>

#include "archive/ArchivePath.h"
#include "archive/ArchiveTreeNode.h"

namespace Cmm::Archive {
namespace {

CCmmArchiveVarivant* FindLeaf(ICmmArchiveObject& root, std::string_view name) {
  const bool isAscii =
      std::all_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (isAscii && !name.empty()) return static_cast<CCmmArchiveTreeNode&>(root).FindLeaf(name);
  CStringT<wchar_t> wide;
  wide.AssignOther(name.data());
  return root.GetLeafItem(CCmmArchivePath(wide));
}

}  // namespace

CCmmArchiveVarivant* FindField(ICmmArchiveObject* root, const char* name,
                               CCmmArchiveVarivant::ArchDataType type) {
  if (!root || !name) return nullptr;
  CCmmArchiveVarivant* leaf = FindLeaf(*root, name);
  return leaf && leaf->GetDataType() == type ? leaf : nullptr;
}

}  // namespace Cmm::Archive
