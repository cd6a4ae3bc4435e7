#pragma once

#include <memory>

#include "archive/ArchiveStream.h"
#include "archive/ArchiveTreeNode.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm::Archive {

constexpr int kAnyPackageVersion = -1;      // matches every version, on either side
constexpr int kCodePackageVersion = 10000;  // of every package that code defines

// A named and versioned tree: the definition of a message, or an instance made from it. Not locked.
class CMM_EXPORT CCmmArchivePackageTree {
 public:
  CCmmArchivePackageTree();
  CCmmArchivePackageTree(const CCmmArchivePackageTree&) = delete;
  CCmmArchivePackageTree& operator=(const CCmmArchivePackageTree&) = delete;
  virtual ~CCmmArchivePackageTree();

  const CStringT<wchar_t>& GetName() const { return m_name; }
  void SetName(const CStringT<wchar_t>& name) { m_name = name; }
  int GetVersion() const { return m_version; }
  void SetVersion(int version) { m_version = version; }

  // The root, which stays the package's. The first call makes it: a container without a name.
  CCmmArchiveTreeNode* GetRoot();

  CCmmArchivePackageTree* DuplicateTree(int flag) const;  // the caller's; `flag` is ignored

  // The tree as a stream that is the caller's: one element, whose last attribute is the version. Null for
  // any type but XML, and when there is no root.
  ICmmArchiveStream* Flattern(ICmmArchiveStream::StreamType type);

  // Fills the tree from the element of `stream`, whatever its name and version. 1 is success; -1 failure,
  // for a stream without an element and for the byte form among them; 0 a type that is neither.
  int ReadFromStream(ICmmArchiveStream* stream, ICmmArchiveStream::StreamType type);

 private:
  CStringT<wchar_t> m_name;
  int m_version = kAnyPackageVersion;
  std::unique_ptr<CCmmArchiveTreeNode> m_root;
};

}  // namespace Cmm::Archive
