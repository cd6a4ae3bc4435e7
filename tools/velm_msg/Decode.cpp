#include "tools/velm_msg/Decode.h"

#include <tinyxml2.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <variant>

#include "archive/ArchivePackageTree.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"
#include "tools/common/Words.h"
#include "tools/velm_msg/Lookup.h"

namespace velm_msg {
namespace {

using Cmm::Archive::kAnyPackageVersion;
using Cmm::Archive::kCodePackageVersion;
using Cmm::Archive::MessageField;
using Cmm::Archive::MessageFieldType;
using tinyxml2::XMLElement;
using velm_tools::JsonLine;

constexpr const char* kVersion = "version";
constexpr int kOwnId = -1;

std::string Quote(std::string_view text) {
  return "'" + std::string(text) + "'";
}

Json::Value ToValue(const CatalogueMessage& message, size_t position) {
  return std::visit(
      [&]<typename T>(const T& value) -> Json::Value {
        if constexpr (std::is_same_v<T, int64_t>)
          return Json::Int64(value);
        else if constexpr (std::is_same_v<T, uint64_t>)
          return Json::UInt64(value);
        else if constexpr (std::is_integral_v<T>)
          return value;
        else
          return message.GetFieldText(position);
      },
      message.GetField(position));
}

// ---- Which class it is ----------------------------------------------------------------------------------

bool HasAllFields(const XMLElement& element, const MessageClass& message) {
  return std::ranges::all_of(message.fields,
                             [&](const MessageField& field) { return element.FindAttribute(field.name); });
}

// Leaves those for which `predicate` holds, unless that leaves none.
template <typename Predicate>
void Narrow(std::vector<const MessageClass*>& candidates, Predicate predicate) {
  if (candidates.size() < 2) return;
  std::vector<const MessageClass*> left;
  std::ranges::copy_if(candidates, std::back_inserter(left), predicate);
  if (!left.empty()) candidates = std::move(left);
}

const MessageClass* FindClass(const XMLElement& element, Decoded& decoded) {
  std::vector<const MessageClass*> candidates = Cmm::Archive::FindMessagesByWireName(element.Name());
  if (candidates.empty()) {
    std::vector<std::string_view> names;
    for (const MessageClass& message : Cmm::Archive::MessageClasses())
      names.push_back(message.wireName);
    decoded.Fail("unknown wire name " + Quote(element.Name()) + velm_tools::Hint(element.Name(), names));
    return nullptr;
  }
  Narrow(candidates, [&](const MessageClass* message) { return message->id == decoded.type; });
  Narrow(candidates, [&](const MessageClass* message) { return HasAllFields(element, *message); });
  if (candidates.size() == 1) return candidates.front();
  decoded.Fail("the wire name " + Quote(element.Name()) + " is shared by " + Names(candidates) +
               ", and the attributes fit " + (HasAllFields(element, *candidates.front()) ? "each" : "none") +
               " of them: choose one with --as CLASS");
  return nullptr;
}

void CheckType(const XMLElement& element, Decoded& decoded) {
  if (!decoded.type) return;
  const std::vector<const MessageClass*> named = Cmm::Archive::FindMessagesById(*decoded.type);
  const std::string type = "the frame's type " + std::to_string(*decoded.type);
  if (named.empty()) return decoded.problems.push_back(type + " is no message's id");
  const auto hasName = [&](const MessageClass* message) {
    return std::string_view(message->wireName) == element.Name();
  };
  if (std::ranges::none_of(named, hasName))
    decoded.problems.push_back(type + " is the id of " + Names(named) + ", which is not called " +
                               Quote(element.Name()));
}

// ---- What its element holds -----------------------------------------------------------------------------

void CheckVersion(const XMLElement& element, Decoded& decoded) {
  int version = kAnyPackageVersion;
  const tinyxml2::XMLError result = element.QueryIntAttribute(kVersion, &version);
  if (result == tinyxml2::XML_NO_ATTRIBUTE) return decoded.remarks.push_back("no version is given");
  if (result != tinyxml2::XML_SUCCESS)
    return decoded.remarks.push_back("the version " + Quote(element.Attribute(kVersion)) +
                                     " is no number, and counts as none");
  if (version != kAnyPackageVersion && version != kCodePackageVersion)
    decoded.Fail("the version is " + std::to_string(version) + ", where " +
                 std::to_string(kCodePackageVersion) + " is known");
}

void CheckAttributes(const XMLElement& element, const MessageClass& message, Decoded& decoded) {
  for (const MessageField& field : message.fields)
    if (!element.FindAttribute(field.name))
      decoded.Fail("the attribute " + Quote(field.name) + " (" + ToString(field.type) + ") is missing");
  for (const auto* attribute = element.FirstAttribute(); attribute; attribute = attribute->Next()) {
    const std::string_view name = attribute->Name();
    const bool isKnown = name == kVersion || std::ranges::any_of(message.fields, [=](const MessageField& f) {
                           return f.name == name;
                         });
    if (!isKnown) decoded.remarks.push_back("the attribute " + Quote(name) + " is no field");
  }
  if (!element.NoChildren()) decoded.remarks.emplace_back("what is inside the element is not read");
}

bool IsNumber(MessageFieldType type) {
  return type != MessageFieldType::str && type != MessageFieldType::wstr;
}

// Tells which attribute kept the text from being read.
void ExplainFailure(const XMLElement& element, CatalogueMessage& message, Decoded& decoded) {
  if (std::optional<std::string> reason = WhyUnusable(message.Class())) return decoded.Fail(*reason);
  bool isExplained = false;
  for (size_t i = 0; i < message.Class().fields.size(); ++i) {
    const MessageField& field = message.Class().fields[i];
    const char* text = element.Attribute(field.name);
    if (message.SetFieldText(i, text)) continue;
    decoded.Fail("the attribute " + Quote(field.name) + " is no " + ToString(field.type) + ": " +
                 Quote(text));
    isExplained = true;
  }
  if (!isExplained) decoded.Fail("the text does not read as " + std::string(message.Class().className));
}

void Read(const Cmm::CmmMQ_Msg& record, const XMLElement& element, Decoded& decoded) {
  CatalogueMessage message(*decoded.messageClass);
  if (!message.Object().ParseMsg(&record)) return ExplainFailure(element, message, decoded);
  for (size_t i = 0; i < message.Class().fields.size(); ++i) {
    const MessageField& field = message.Class().fields[i];
    decoded.values.push_back(ToValue(message, i));
    const std::string_view written = element.Attribute(field.name);
    if (IsNumber(field.type) && written != message.GetFieldText(i))
      decoded.remarks.push_back("the attribute " + Quote(field.name) + " is written " + Quote(written) +
                                " and read as " + message.GetFieldText(i));
  }
}

void DecodeElement(const Cmm::CmmMQ_Msg& record, const XMLElement& element, const MessageClass* as,
                   Decoded& decoded) {
  decoded.wireName = element.Name();
  CheckType(element, decoded);
  decoded.messageClass = as ? as : FindClass(element, decoded);
  if (!decoded.messageClass) return;
  if (decoded.wireName != decoded.messageClass->wireName)
    decoded.Fail(std::string(decoded.messageClass->className) + " is called " +
                 Quote(decoded.messageClass->wireName) + ", not " + Quote(decoded.wireName));
  CheckVersion(element, decoded);
  CheckAttributes(element, *decoded.messageClass, decoded);
  if (!decoded.isUnreadable) Read(record, element, decoded);
}

// ---- Frames and texts -----------------------------------------------------------------------------------

// The first element of a text; null, and a problem told, when there is none.
const XMLElement* Parse(tinyxml2::XMLDocument& document, std::string_view text, Decoded& decoded) {
  if (document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS)
    decoded.Fail(std::string("no XML: ") + document.ErrorName() + " in line " +
                 std::to_string(document.ErrorLineNum()));
  else if (!document.FirstChildElement())
    decoded.Fail("no XML element");
  else
    return document.FirstChildElement();
  return nullptr;
}

Decoded DecodeFrame(const Cmm::CmmInternelMsg& frame, size_t offset, const MessageClass* as) {
  Decoded decoded;
  decoded.offset = offset;
  decoded.type = frame.GetMsgType();
  tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  const std::string_view text(reinterpret_cast<const char*>(frame.GetData()), frame.GetLen());
  const XMLElement* element = Parse(document, text, decoded);
  if (!element) return decoded;
  DecodeElement(frame, *element, as, decoded);
  if (element->NextSiblingElement()) decoded.remarks.emplace_back("only the first element is read");
  return decoded;
}

Decoded Problem(size_t offset, std::string problem) {
  Decoded decoded;
  decoded.offset = offset;
  decoded.Fail(std::move(problem));
  return decoded;
}

std::string Bytes(size_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::vector<Decoded> DecodeFrames(std::string_view bytes, const MessageClass* as) {
  const size_t headLen = Cmm::CmmInternelMsg::GetHeadLen();
  std::vector<Decoded> all;
  for (size_t at = 0; at < bytes.size();) {
    const std::string_view rest = bytes.substr(at);
    if (rest.size() < headLen) {
      all.push_back(Problem(at, Bytes(rest.size()) + " left, where a header has " + Bytes(headLen)));
      break;
    }
    const unsigned length = Cmm::CmmInternelMsg::ParseMsgLen(rest.data());
    if (length > rest.size() - headLen) {
      all.push_back(Problem(at, std::string(at == 0 ? "no XML, and as a frame cut" : "cut") +
                                    ": the header tells of " + Bytes(length) + ", and what is left is " +
                                    Bytes(rest.size() - headLen)));
      break;
    }
    if (length == 0) {
      all.push_back(Problem(at, "a header without a payload: receivers see an empty message of no type"));
    } else {
      const Cmm::CmmInternelMsg frame(reinterpret_cast<const unsigned char*>(rest.data()), length, 1);
      all.push_back(DecodeFrame(frame, at, as));
    }
    at += headLen + length;
  }
  return all;
}

std::vector<Decoded> DecodeText(std::string_view text, const MessageClass* as) {
  std::vector<Decoded> all;
  tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  Decoded failed;
  const XMLElement* element = Parse(document, text, failed);
  if (!element) all.push_back(std::move(failed));
  for (; element; element = element->NextSiblingElement()) {
    tinyxml2::XMLPrinter printer(nullptr, true);
    element->Accept(&printer);
    const Cmm::CmmInternelMsg record(reinterpret_cast<const unsigned char*>(printer.CStr()),
                                     static_cast<unsigned>(printer.CStrSize() - 1), 0);
    DecodeElement(record, *element, as, all.emplace_back());
  }
  return all;
}

}  // namespace

bool LooksLikeText(std::string_view bytes) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (bytes.substr(0, 4).find('\0') != std::string_view::npos) return false;
  if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
  const size_t first = bytes.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && bytes[first] == '<';
}

std::vector<Decoded> Decode(std::string_view bytes, const MessageClass* as) {
  if (bytes.empty()) return {Problem(0, "the input is empty")};
  return LooksLikeText(bytes) ? DecodeText(bytes, as) : DecodeFrames(bytes, as);
}

std::optional<std::string> WhyUnusable(const MessageClass& messageClass) {
  CatalogueMessage message(messageClass);
  const std::unique_ptr<Cmm::CmmMQ_Msg> built(message.Object().BuildMsg(kOwnId));
  const std::vector<const MessageClass*> sharing =
      Cmm::Archive::FindMessagesByWireName(messageClass.wireName);
  if (built || sharing.size() < 2) return std::nullopt;
  return "of " + Names(sharing) +
         ", which share a wire name, a process can only use the one that it meets first: give " +
         messageClass.className + " a run of its own";
}

std::vector<std::string> ToLines(const Decoded& decoded) {
  std::string head = decoded.wireName.empty() ? "at " + std::to_string(decoded.offset) : "message";
  if (decoded.type)
    head = "frame at " + std::to_string(decoded.offset) + ", type " + std::to_string(*decoded.type);
  if (decoded.messageClass) head += std::string(": ") + decoded.messageClass->className;
  std::vector<std::string> lines{head};
  if (!decoded.wireName.empty()) lines.push_back("  wire name " + decoded.wireName);
  for (size_t i = 0; i < decoded.values.size(); ++i) {
    const MessageField& field = decoded.messageClass->fields[i];
    lines.push_back(std::string("  ") + ToString(field.type) + ' ' + field.name + " = " +
                    velm_tools::ToJson(decoded.values[i]));
  }
  for (const std::string& remark : decoded.remarks)
    lines.push_back("  note: " + remark);
  for (const std::string& problem : decoded.problems)
    lines.push_back("  error: " + problem);
  return lines;
}

std::string ToJsonText(const Decoded& decoded) {
  const auto list = [](const std::vector<std::string>& texts) {
    Json::Value array(Json::arrayValue);
    for (const std::string& text : texts)
      array.append(text);
    return array;
  };
  const auto orNull = [](bool isThere, const Json::Value& value) { return isThere ? value : Json::Value(); };
  Json::Value fields(Json::objectValue);
  for (size_t i = 0; i < decoded.values.size(); ++i)
    fields[decoded.messageClass->fields[i].name] = decoded.values[i];
  return JsonLine()
      .Add("offset", Json::UInt64(decoded.offset))
      .Add("type", decoded.type ? Json::Value(*decoded.type) : Json::Value())
      .Add("class", decoded.messageClass ? Json::Value(decoded.messageClass->className) : Json::Value())
      .Add("wireName", orNull(!decoded.wireName.empty(), decoded.wireName))
      .Add("fields", orNull(decoded.IsRead(), fields))
      .Add("notes", list(decoded.remarks))
      .Add("errors", list(decoded.problems))
      .Text();
}

}  // namespace velm_msg
