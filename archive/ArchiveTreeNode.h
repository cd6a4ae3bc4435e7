#pragma once

// A node of an archive tree: named, typed, and able to fill itself from an XML element and to print itself
// as one. A tree is a definition, which says what a message holds, or an instance, duplicated from one,
// which holds a message's values.

#include <memory>
#include <string_view>

#include "archive/ArchiveObject.h"
#include "archive/ArchiveValue.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
}  // namespace tinyxml2

namespace Cmm::Archive {

// A node is of one kind:
//   attribute  neither container nor text; the tag of its data is its declared type, and it stands for one
//              XML attribute of its parent's element
//   container  stands for a child element of its own name, and may have children of any kind
//   text       reserved: it can be declared, is left out of output, and fails input that reaches it
// Operations that return int return 1 for success and 0 for failure, unless they tell a property.
// Not locked: an instance belongs to one thread at a time, a definition is only read.
class CMM_EXPORT CCmmArchiveTreeNode : public ICmmArchiveObject {
 public:
  static constexpr int kAnyCount = -1;  // a container that takes any number of elements

  CCmmArchiveTreeNode();
  CCmmArchiveTreeNode(const CCmmArchiveTreeNode&) = delete;
  CCmmArchiveTreeNode& operator=(const CCmmArchiveTreeNode&) = delete;
  ~CCmmArchiveTreeNode() override;  // destroys the children

  const CStringT<wchar_t>& GetName() const override;
  CCmmArchiveVarivant* GetLeafItem(const CCmmArchivePath& path) override;
  ICmmArchiveObject* GetTrunkItem(const CCmmArchivePath& path) override;
  ICmmArchiveObject* GetNextSibling(const CStringT<wchar_t>& name) override;
  ICmmArchiveObject* GetFirstChild(const CStringT<wchar_t>& name) override;
  ICmmArchiveObject* DuplicateNode(ICmmArchiveObject* newParent) override;

  // Building
  void SetName(const CStringT<wchar_t>& name);
  // Takes `child` over, and puts it behind the other children. When this node is no container, `child` is
  // destroyed and 0 returned; 0 for null.
  int AppendChild(CCmmArchiveTreeNode* child);
  // A copy of this node and what is below it, without the is-parsed marks; the caller's. `flag` is ignored.
  CCmmArchiveTreeNode* Duplicate(int flag) const;

  // Properties
  int IsContainer() const { return m_isContainer; }
  void SetAsContainer(int isContainer) { m_isContainer = isContainer; }
  int IsText() const { return m_isText; }
  void SetAsText(int isText) { m_isText = isText; }
  int IsEssential() const { return m_isEssential; }  // 1 in a new node
  void SetAsEssential(int isEssential) { m_isEssential = isEssential; }
  int GetCountAttr() const { return m_count; }  // how many elements a container takes; 1 in a new node
  void SetCountAttr(int count) { m_count = count; }
  int IsSupportLoop() const { return m_count == kAnyCount ? 1 : 0; }
  int IsParsed() const { return m_isParsed; }  // whether input has been applied to this node
  CCmmArchiveVarivant& GetData() { return m_data; }

  // A leaf among the children by an ASCII name; the same as GetLeafItem with the path of that one name,
  // which must not be empty.
  CCmmArchiveVarivant* FindLeaf(std::string_view name);

  // Input. `element` is that of the enclosing block: an attribute is read from it, a container from its
  // child elements of the container's name. `parent` is this node's parent, which takes the copies that the
  // second and later elements of a repeated container make. 0 leaves the tree partly filled.
  int LoadFromXml(tinyxml2::XMLElement* element, CCmmArchiveTreeNode* parent);
  // Fills this container from its own element: every child in order, but those that were appended and
  // filled on the way.
  int LoadChildrenFromXml(tinyxml2::XMLElement* element);

  // Output: the element of this container, which belongs to `document` but is not linked into it. Null for
  // other nodes. With a null `document` a new one is made, which is to be destroyed with the element.
  tinyxml2::XMLElement* ToXmlElement(tinyxml2::XMLDocument* document);

 protected:
  CCmmArchiveTreeNode* GetNode(const CCmmArchivePath& path);
  int ParseAsAttributeNode(tinyxml2::XMLElement* element);
  int ParseAsContainerNode(tinyxml2::XMLElement* element, CCmmArchiveTreeNode* parent);
  int ParseAsTextNode(tinyxml2::XMLElement* element);
  // 0 when nothing was written, but for a null text that is not essential.
  int AppendAttributeNode(tinyxml2::XMLElement* element, CCmmArchiveTreeNode* child);

 private:
  // A name in both encodings, made once and shared with every copy of the node.
  struct Name {
    CStringT<wchar_t> wide;
    CStringT<char> utf8;
  };

  static CCmmArchiveTreeNode* FindFrom(CCmmArchiveTreeNode* node, const CStringT<wchar_t>& name);
  const char* Utf8Name() const { return m_name ? m_name->utf8.c_str() : ""; }
  int AppendFilledCopy(tinyxml2::XMLElement* element, CCmmArchiveTreeNode* parent) const;
  bool ReadValue(const char* text);

  CCmmArchiveTreeNode* m_firstChild = nullptr;   // owned
  CCmmArchiveTreeNode* m_nextSibling = nullptr;  // owned by the parent's list
  std::shared_ptr<const Name> m_name;            // null is the empty name
  int m_isContainer = 0;
  int m_isText = 0;
  int m_isEssential = 1;
  int m_count = 1;
  CCmmArchiveVarivant m_data;
  int m_isParsed = 0;
  CCmmArchiveTreeNode* m_lastChild = nullptr;  // where the next child is appended
};

}  // namespace Cmm::Archive
