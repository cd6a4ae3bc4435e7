#pragma once

#include "common/client/utility/src/CmmString.h"

namespace Cmm {

class CCmmArchivePath;
class CCmmArchiveVarivant;

// The face of a node of an archive tree. The one class behind it is Archive::CCmmArchiveTreeNode.
// What is returned belongs to the tree, and null means that there is no such node.
class ICmmArchiveObject {
 public:
  virtual ~ICmmArchiveObject() = default;

  virtual const CStringT<wchar_t>& GetName() const = 0;
  // A path leads from this node to its first child of the path's first name, and on from there. A path of
  // depth 0 leads to this node; an empty name in it to the first child.
  virtual CCmmArchiveVarivant* GetLeafItem(const CCmmArchivePath& path) = 0;  // null for a container
  virtual ICmmArchiveObject* GetTrunkItem(const CCmmArchivePath& path) = 0;   // null unless a container
  // The first node of that exact name among those behind this one, or among this one's children; with an
  // empty name the first at all.
  virtual ICmmArchiveObject* GetNextSibling(const CStringT<wchar_t>& name) = 0;
  virtual ICmmArchiveObject* GetFirstChild(const CStringT<wchar_t>& name) = 0;
  // Appends a copy of this node and what is below it to `newParent`, and returns the copy. Null, and no
  // copy, when `newParent` is null or no container.
  virtual ICmmArchiveObject* DuplicateNode(ICmmArchiveObject* newParent) = 0;
};

}  // namespace Cmm
