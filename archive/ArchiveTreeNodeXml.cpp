// The XML half of CCmmArchiveTreeNode: input from an element, output to one.

#include <tinyxml2.h>

#include <charconv>
#include <cstdlib>
#include <cwchar>
#include <limits>

#include "archive/ArchiveText.h"
#include "archive/ArchiveTreeNode.h"
#include "common/client/utility/src/CmmNumber.h"

namespace Cmm::Archive {
namespace {

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

template <typename Integer>
void SetDecimal(XMLElement& element, const char* name, Integer value) {
  char text[std::numeric_limits<Integer>::digits10 + 3];  // all digits, a sign, the terminator
  *std::to_chars(text, text + sizeof(text) - 1, value).ptr = '\0';
  element.SetAttribute(name, text);
}

}  // namespace

int CCmmArchiveTreeNode::LoadFromXml(XMLElement* element, CCmmArchiveTreeNode* parent) {
  if (!element) return 0;
  m_isParsed = 1;
  if (IsContainer()) return ParseAsContainerNode(element, parent);
  if (IsText()) return 0;
  return ParseAsAttributeNode(element);
}

int CCmmArchiveTreeNode::LoadChildrenFromXml(XMLElement* element) {
  for (CCmmArchiveTreeNode* child = m_firstChild; child;) {
    if (!child->LoadFromXml(element, this)) return 0;
    do {
      child = child->m_nextSibling;
    } while (child && child->IsParsed());
  }
  return 1;
}

int CCmmArchiveTreeNode::ParseAsTextNode(XMLElement*) {
  return 0;
}

int CCmmArchiveTreeNode::ParseAsAttributeNode(XMLElement* element) {
  if (!element) return 0;
  const tinyxml2::XMLAttribute* attribute = element->FindAttribute(Utf8Name());
  bool isRead = false;
  switch (m_data.GetDataType()) {
    case CCmmArchiveVarivant::ArchDataType_Int32:
      if (int value = 0; attribute && attribute->QueryIntValue(&value) == tinyxml2::XML_SUCCESS) {
        m_data.SetInt32(value);
        isRead = true;
      }
      break;
    case CCmmArchiveVarivant::ArchDataType_UInt32:
      if (unsigned value = 0; attribute && attribute->QueryUnsignedValue(&value) == tinyxml2::XML_SUCCESS) {
        m_data.SetUInt32(value);
        isRead = true;
      }
      break;
    case CCmmArchiveVarivant::ArchDataType_Bool:
      if (int value = 0; attribute && attribute->QueryIntValue(&value) == tinyxml2::XML_SUCCESS) {
        m_data.SetBool(value != 0 ? 1 : 0);
        isRead = true;
      }
      break;
    case CCmmArchiveVarivant::ArchDataType_Float:
      if (float value = 0; attribute && attribute->QueryFloatValue(&value) == tinyxml2::XML_SUCCESS) {
        m_data.SetFloat(value);
        isRead = true;
      }
      break;
    case CCmmArchiveVarivant::ArchDataType_Double:
      if (double value = 0; attribute && attribute->QueryDoubleValue(&value) == tinyxml2::XML_SUCCESS) {
        m_data.SetDouble(value);
        isRead = true;
      }
      break;
    case CCmmArchiveVarivant::ArchDataType_String:
    case CCmmArchiveVarivant::ArchDataType_Int64:
    case CCmmArchiveVarivant::ArchDataType_UInt64:
      isRead = attribute && ReadValue(attribute->Value());
      break;
    // A Char is printed but never read back, essential or not: peers count on the asymmetry.
    case CCmmArchiveVarivant::ArchDataType_Char:
    case CCmmArchiveVarivant::ArchDataType_Empty:
    case CCmmArchiveVarivant::ArchDataType_Object:
      return 0;
  }
  return isRead || !IsEssential() ? 1 : 0;
}

// Values of the types that the XML library has no conversion for. False when the text does not convert.
bool CCmmArchiveTreeNode::ReadValue(const char* text) {
  if (m_data.GetDataType() == CCmmArchiveVarivant::ArchDataType_String) {
    m_data.SetUtf8String(text);
    return true;
  }
  if (m_data.GetDataType() == CCmmArchiveVarivant::ArchDataType_Int64) {
    m_data.SetInt64(std::strtoll(text, nullptr, 10));  // what is no number counts as 0, and is no failure
    return true;
  }
  uint64_t value = 0;
  if (!StringToUInt64(WideFromUtf8(text), value)) return false;
  m_data.SetUInt64(value);
  return true;
}

int CCmmArchiveTreeNode::ParseAsContainerNode(XMLElement* element, CCmmArchiveTreeNode* parent) {
  if (!element) return 0;
  const char* name = Utf8Name();
  XMLElement* first = element->FirstChildElement(name);
  if (!first) return IsEssential() ? 0 : 1;

  // The copies are made while this node still holds the definition's defaults.
  int seen = 1;
  XMLElement* next = first->NextSiblingElement(name);
  while (next && parent && parent->IsContainer() && (IsSupportLoop() || seen < m_count)) {
    if (!AppendFilledCopy(next, parent)) return 0;
    next = next->NextSiblingElement(name);
    ++seen;
  }
  if (!LoadChildrenFromXml(first)) return 0;

  // One element less than the count passes as well: peers rely on the loose bound.
  return IsSupportLoop() || seen >= int64_t{m_count} - 1 ? 1 : 0;
}

int CCmmArchiveTreeNode::AppendFilledCopy(XMLElement* element, CCmmArchiveTreeNode* parent) const {
  CCmmArchiveTreeNode* copy = Duplicate(0);
  parent->AppendChild(copy);
  copy->m_isParsed = 1;
  return copy->LoadChildrenFromXml(element);
}

XMLElement* CCmmArchiveTreeNode::ToXmlElement(XMLDocument* document) {
  if (!IsContainer()) return nullptr;
  std::unique_ptr<XMLDocument> ownDocument;
  if (!document) {
    ownDocument = std::make_unique<XMLDocument>(true, tinyxml2::PRESERVE_WHITESPACE);
    document = ownDocument.get();
  }
  XMLElement* element = document->NewElement(Utf8Name());
  if (!element) return nullptr;
  for (CCmmArchiveTreeNode* child = m_firstChild; child; child = child->m_nextSibling) {
    if (child->IsContainer()) {
      element->InsertEndChild(child->ToXmlElement(document));
    } else if (!child->IsText()) {
      AppendAttributeNode(element, child);
    }
  }
  static_cast<void>(ownDocument.release());  // whoever holds the element destroys its document
  return element;
}

int CCmmArchiveTreeNode::AppendAttributeNode(XMLElement* element, CCmmArchiveTreeNode* child) {
  if (!element || !child || child->IsText() || child->IsContainer()) return 0;
  const char* name = child->Utf8Name();
  const CCmmArchiveVarivant& data = child->m_data;
  switch (data.GetDataType()) {
    case CCmmArchiveVarivant::ArchDataType_Int32:
    case CCmmArchiveVarivant::ArchDataType_Bool:
      SetDecimal(*element, name, data.GetInt32());
      return 1;
    case CCmmArchiveVarivant::ArchDataType_Char:
      SetDecimal(*element, name, int{data.GetChar()});
      return 1;
    case CCmmArchiveVarivant::ArchDataType_UInt32:
      SetDecimal(*element, name, data.GetUInt32());
      return 1;
    case CCmmArchiveVarivant::ArchDataType_String:
      if (const wchar_t* text = data.GetString()) {
        element->SetAttribute(name, Utf8Text(text, std::wcslen(text)).c_str());
        return 1;
      }
      return child->IsEssential() ? 0 : 1;
    case CCmmArchiveVarivant::ArchDataType_Float:
      element->SetAttribute(name, data.GetFloat());
      return 1;
    case CCmmArchiveVarivant::ArchDataType_Double:
      element->SetAttribute(name, data.GetDouble());
      return 1;
    case CCmmArchiveVarivant::ArchDataType_Int64:
      SetDecimal(*element, name, data.GetInt64());
      return 1;
    case CCmmArchiveVarivant::ArchDataType_UInt64:
      SetDecimal(*element, name, data.GetUInt64());
      return 1;
    case CCmmArchiveVarivant::ArchDataType_Empty:
    case CCmmArchiveVarivant::ArchDataType_Object:
      return 0;
  }
  return 0;
}

}  // namespace Cmm::Archive
