// The XML half of CCmmArchiveTreeNode: input from an element, output to one.

#include <tinyxml2.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cwchar>
#include <optional>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "archive/ArchiveText.h"
#include "archive/ArchiveTreeNode.h"
#include "common/client/utility/src/CmmNumber.h"

namespace Cmm::Archive {
namespace {

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

constexpr size_t kMaxDirectAttributes = 32;  // of one element; beyond it, looking for twins costs too much

// The same as the attribute's own query. Plain decimal numbers, which is what peers send, do not go through
// the C library's scanner.
template <typename Integer>
bool QueryInteger(const tinyxml2::XMLAttribute* attribute, Integer& value) {
  if (!attribute) return false;
  const std::string_view text = attribute->Value();
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc() && end == text.data() + text.size()) return true;
  if constexpr (std::is_signed_v<Integer>) {
    return attribute->QueryIntValue(&value) == tinyxml2::XML_SUCCESS;
  } else {
    return attribute->QueryUnsignedValue(&value) == tinyxml2::XML_SUCCESS;
  }
}

// The text of the attribute that a leaf prints, for the length of a call.
class LeafText {
 public:
  explicit LeafText(const CCmmArchiveVarivant& data);

  const char* c_str() const { return m_text; }  // null when the leaf prints none

 private:
  template <typename Number>
  void SetDecimal(Number value) {
    *std::to_chars(m_number, m_number + sizeof(m_number) - 1, value).ptr = '\0';
    m_text = m_number;
  }
  template <typename Number>
  void SetReal(Number value) {
    tinyxml2::XMLUtil::ToStr(value, m_number, sizeof(m_number));
    m_text = m_number;
  }

  const char* m_text = nullptr;
  char m_number[40];
  std::optional<Utf8Text> m_utf8;
};

LeafText::LeafText(const CCmmArchiveVarivant& data) {
  switch (data.GetDataType()) {
    case CCmmArchiveVarivant::ArchDataType_Int32:
    case CCmmArchiveVarivant::ArchDataType_Bool:
      SetDecimal(data.GetInt32());
      break;
    case CCmmArchiveVarivant::ArchDataType_Char:
      SetDecimal(int{data.GetChar()});
      break;
    case CCmmArchiveVarivant::ArchDataType_UInt32:
      SetDecimal(data.GetUInt32());
      break;
    case CCmmArchiveVarivant::ArchDataType_Int64:
      SetDecimal(data.GetInt64());
      break;
    case CCmmArchiveVarivant::ArchDataType_UInt64:
      SetDecimal(data.GetUInt64());
      break;
    case CCmmArchiveVarivant::ArchDataType_Float:
      SetReal(data.GetFloat());
      break;
    case CCmmArchiveVarivant::ArchDataType_Double:
      SetReal(data.GetDouble());
      break;
    case CCmmArchiveVarivant::ArchDataType_String:
      if (const wchar_t* text = data.GetString()) m_text = m_utf8.emplace(text, std::wcslen(text)).c_str();
      break;
    case CCmmArchiveVarivant::ArchDataType_Empty:
    case CCmmArchiveVarivant::ArchDataType_Object:
      break;
  }
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
      if (int value = 0; QueryInteger(attribute, value)) {
        m_data.SetInt32(value);
        isRead = true;
      }
      break;
    case CCmmArchiveVarivant::ArchDataType_UInt32:
      if (unsigned value = 0; QueryInteger(attribute, value)) {
        m_data.SetUInt32(value);
        isRead = true;
      }
      break;
    case CCmmArchiveVarivant::ArchDataType_Bool:
      if (int value = 0; QueryInteger(attribute, value)) {
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
  if (const LeafText text(child->m_data); text.c_str()) {
    element->SetAttribute(child->Utf8Name(), text.c_str());
    return 1;
  }
  return child->m_data.GetDataType() == CCmmArchiveVarivant::ArchDataType_String && !child->IsEssential();
}

bool CCmmArchiveTreeNode::CanPrintDirectly(std::string_view reserved) const {
  std::string_view names[kMaxDirectAttributes];
  size_t count = 0;
  names[count++] = reserved;
  for (const CCmmArchiveTreeNode* child = m_firstChild; child; child = child->m_nextSibling) {
    if (child->IsContainer()) {
      if (!child->CanPrintDirectly({})) return false;
    } else if (!child->IsText()) {
      const std::string_view name = child->Utf8Name();
      if (count == kMaxDirectAttributes || std::find(names, names + count, name) != names + count)
        return false;
      names[count++] = name;
    }
  }
  return true;
}

void CCmmArchiveTreeNode::PrintTo(tinyxml2::XMLPrinter& printer, const int* version) const {
  printer.OpenElement(Utf8Name());
  for (const CCmmArchiveTreeNode* child = m_firstChild; child; child = child->m_nextSibling) {
    if (child->IsContainer() || child->IsText()) continue;
    if (const LeafText text(child->m_data); text.c_str())
      printer.PushAttribute(child->Utf8Name(), text.c_str());
  }
  if (version) printer.PushAttribute(kVersionAttribute, *version);
  for (const CCmmArchiveTreeNode* child = m_firstChild; child; child = child->m_nextSibling) {
    if (child->IsContainer()) child->PrintTo(printer, nullptr);
  }
  printer.CloseElement();
}

void CCmmArchiveTreeNode::PrintPackage(tinyxml2::XMLPrinter& printer, int version) {
  if (CanPrintDirectly(kVersionAttribute)) return PrintTo(printer, &version);
  XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  XMLElement* element = ToXmlElement(&document);
  element->SetAttribute(kVersionAttribute, version);
  element->Accept(&printer);
}

}  // namespace Cmm::Archive
