#pragma once

// What the archive tests share: nodes built in one line, and text read and printed through them.

#include <tinyxml2.h>

#include <memory>
#include <string>

#include "archive/ArchivePath.h"
#include "archive/ArchiveTreeNode.h"

namespace archive_testing {

using Cmm::CCmmArchivePath;
using Cmm::CCmmArchiveVarivant;
using Cmm::CStringA;
using Cmm::CStringW;
using Cmm::Archive::CCmmArchiveTreeNode;
using NodePtr = std::unique_ptr<CCmmArchiveTreeNode>;
using Type = CCmmArchiveVarivant::ArchDataType;

// Gives `data` the tag, with the default that a definition has.
inline void Declare(CCmmArchiveVarivant& data, Type type) {
  switch (type) {
    case CCmmArchiveVarivant::ArchDataType_Empty:
      break;
    case CCmmArchiveVarivant::ArchDataType_Int32:
      return data.SetInt32(0);
    case CCmmArchiveVarivant::ArchDataType_UInt32:
      return data.SetUInt32(0);
    case CCmmArchiveVarivant::ArchDataType_Bool:
      return data.SetBool(0);
    case CCmmArchiveVarivant::ArchDataType_Char:
      return data.SetChar(0);
    case CCmmArchiveVarivant::ArchDataType_String:
      return data.SetString(nullptr);
    case CCmmArchiveVarivant::ArchDataType_Float:
      return data.SetFloat(0);
    case CCmmArchiveVarivant::ArchDataType_Double:
      return data.SetDouble(0);
    case CCmmArchiveVarivant::ArchDataType_Int64:
      return data.SetInt64(0);
    case CCmmArchiveVarivant::ArchDataType_Object:
      return data.SetObject(nullptr);
    case CCmmArchiveVarivant::ArchDataType_UInt64:
      return data.SetUInt64(0);
  }
}

inline CCmmArchiveTreeNode* Leaf(const wchar_t* name, Type type, int isEssential = 1) {
  auto* node = new CCmmArchiveTreeNode;
  node->SetName(name);
  node->SetAsEssential(isEssential);
  Declare(node->GetData(), type);
  return node;
}

inline CCmmArchiveTreeNode* TextNode(const wchar_t* name, int isEssential = 1) {
  CCmmArchiveTreeNode* node = Leaf(name, CCmmArchiveVarivant::ArchDataType_String, isEssential);
  node->SetAsText(1);
  return node;
}

// A container that takes the given nodes as its children.
template <typename... Nodes>
CCmmArchiveTreeNode* Container(const wchar_t* name, Nodes*... children) {
  auto* node = new CCmmArchiveTreeNode;
  node->SetName(name);
  node->SetAsContainer(1);
  (node->AppendChild(children), ...);
  return node;
}

inline CCmmArchiveTreeNode* Counted(int count, CCmmArchiveTreeNode* node) {
  node->SetCountAttr(count);
  return node;
}

inline CCmmArchiveTreeNode* Optional(CCmmArchiveTreeNode* node) {
  node->SetAsEssential(0);
  return node;
}

inline CCmmArchivePath Path(std::initializer_list<const wchar_t*> names) {
  CCmmArchivePath path(CStringW(L""));
  for (const wchar_t* name : names)
    path.AppendName(name);
  return path;
}

// The children that stand behind each other in the tree.
inline CCmmArchiveTreeNode* First(Cmm::ICmmArchiveObject* parent) {
  return static_cast<CCmmArchiveTreeNode*>(parent->GetFirstChild(L""));
}
inline CCmmArchiveTreeNode* Next(Cmm::ICmmArchiveObject* node) {
  return static_cast<CCmmArchiveTreeNode*>(node->GetNextSibling(L""));
}

// "name name(child child) name": the children of a node as a reader sees them, a leaf of text or of a
// 32-bit number with its value.
inline std::string Outline(Cmm::ICmmArchiveObject* parent) {
  std::string text;
  for (CCmmArchiveTreeNode* node = First(parent); node; node = Next(node)) {
    if (!text.empty()) text += ' ';
    for (const wchar_t unit : node->GetName())
      text += static_cast<char>(unit);
    if (node->IsContainer()) {
      text += '(' + Outline(node) + ')';
    } else if (node->GetData().GetDataType() == CCmmArchiveVarivant::ArchDataType_Int32) {
      text += '=' + std::to_string(node->GetData().GetInt32());
    } else if (const wchar_t* value = node->GetData().GetString()) {
      text += '=';
      for (; *value; ++value)
        text += static_cast<char>(*value);
    }
  }
  return text;
}

// The text of a container, as a stream would print it. The empty text where there is no element.
inline std::string Print(CCmmArchiveTreeNode& node) {
  tinyxml2::XMLElement* element = node.ToXmlElement(nullptr);
  if (!element) return {};
  const std::unique_ptr<tinyxml2::XMLDocument> document(element->GetDocument());
  tinyxml2::XMLPrinter printer;
  element->Accept(&printer);
  return printer.CStr();
}

// An element parsed from text, with its document.
class Element {
 public:
  explicit Element(const std::string& text) : m_document(true, tinyxml2::PRESERVE_WHITESPACE) {
    m_document.Parse(text.c_str(), text.size());
  }
  operator tinyxml2::XMLElement*() { return m_document.FirstChildElement(); }

 private:
  tinyxml2::XMLDocument m_document;
};

}  // namespace archive_testing
