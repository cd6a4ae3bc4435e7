#include "tools/velm_msg/Encode.h"

#include <json/value.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>

#include "common/client/utility/src/ipc/CmmMQMsg.h"
#include "tools/common/JsonLine.h"
#include "tools/common/UsageError.h"
#include "tools/common/Words.h"
#include "tools/velm_msg/Decode.h"
#include "tools/velm_msg/Lookup.h"

namespace velm_msg {
namespace {

using velm_tools::UsageError;

constexpr int kOwnId = -1;

size_t FindField(const CatalogueMessage& message, std::string_view name) {
  if (const std::optional<size_t> position = message.FindField(name)) return *position;
  std::vector<std::string_view> names;
  for (const auto& field : message.Class().fields)
    names.push_back(field.name);
  throw UsageError(std::string(message.Class().className) + " has no field '" + std::string(name) + "'" +
                   velm_tools::Hint(name, names));
}

void SetField(CatalogueMessage& message, size_t position, std::string_view text) {
  if (message.SetFieldText(position, text)) return;
  const auto& field = message.Class().fields[position];
  throw UsageError("'" + std::string(text) + "' is no " + ToString(field.type) + " for the field '" +
                   field.name + "'");
}

// The text of a JSON value as a field takes it.
std::string TextOf(const Json::Value& value, const std::string& name) {
  if (value.isString()) return value.asString();
  if (value.isBool()) return value.asBool() ? "1" : "0";
  if (value.type() == Json::intValue || value.type() == Json::uintValue) return value.asString();
  throw UsageError("the field '" + name + "' takes text or a whole number, not " + velm_tools::ToJson(value));
}

Encoded EncodeFields(const MessageClass& messageClass, const Json::Value& fields) {
  CatalogueMessage message(messageClass);
  for (const std::string& name : fields.getMemberNames())
    SetField(message, FindField(message, name), TextOf(fields[name], name));
  return Encode(message);
}

Encoded EncodeObject(const Json::Value& object, const MessageClass* given) {
  if (!object.isObject()) throw UsageError("a message is a JSON object");
  const Json::Value& fields = object["fields"];
  if (given && !fields.isObject()) return EncodeFields(*given, object);
  if (!fields.isObject()) throw UsageError("\"fields\" is missing or no object");
  const Json::Value& name = object["class"];
  if (!name.isString() && !given) throw UsageError("\"class\" is missing, and no message is named");
  const MessageClass& messageClass = name.isString() ? FindTheOne(name.asString()) : *given;
  if (given && given != &messageClass)
    throw UsageError(std::string("a ") + messageClass.className + " is no " + given->className);
  return EncodeFields(messageClass, fields);
}

}  // namespace

void SetFields(CatalogueMessage& message, const std::vector<std::string>& assignments) {
  std::set<size_t> seen;
  for (const std::string& assignment : assignments) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos) throw UsageError("'" + assignment + "' is not name=value");
    const std::string_view name = std::string_view(assignment).substr(0, equals);
    const size_t position = FindField(message, name);
    if (!seen.insert(position).second) throw UsageError("'" + std::string(name) + "' is set twice");
    SetField(message, position, std::string_view(assignment).substr(equals + 1));
  }
}

std::vector<Encoded> EncodeJson(std::string_view json, const MessageClass* messageClass) {
  if (const std::optional<Json::Value> whole = velm_tools::ParseJson(json))
    return {EncodeObject(*whole, messageClass)};
  std::vector<Encoded> all;
  size_t number = 1;
  for (std::string_view rest = json; !rest.empty(); ++number) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = velm_tools::Trim(line);
    if (line.empty()) continue;
    try {
      const std::optional<Json::Value> value = velm_tools::ParseJson(line);
      if (!value) throw UsageError("no JSON object");
      all.push_back(EncodeObject(*value, messageClass));
    } catch (const std::runtime_error& error) {
      throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
    }
  }
  if (all.empty()) throw std::runtime_error("the input holds no JSON object");
  return all;
}

Encoded Encode(CatalogueMessage& message) {
  const MessageClass& messageClass = message.Class();
  const auto fail = [&](const std::string& why) {
    throw std::runtime_error(std::string(messageClass.className) + " cannot be sent: " + why);
  };
  const std::unique_ptr<Cmm::CmmMQ_Msg> built(message.Object().BuildMsg(kOwnId));
  if (!built) fail(WhyUnusable(messageClass).value_or("it does not build"));
  CatalogueMessage received(messageClass);
  if (!received.Object().ParseMsg(built.get())) fail("what is built does not read");
  for (size_t i = 0; i < messageClass.fields.size(); ++i)
    if (received.GetFieldText(i) != message.GetFieldText(i))
      fail(std::string("the value of '") + messageClass.fields[i].name + "' would arrive as " +
           velm_tools::ToJson(received.GetFieldText(i)));

  // What BuildMsg gives is a record of this kind.
  Cmm::CmmInternelMsg frame(built->GetData(), built->GetLen(), 0);
  frame.SetMsgType(built->GetMsgType());
  const char* base = reinterpret_cast<const char*>(frame.GetBase());
  const unsigned headLen = Cmm::CmmInternelMsg::GetHeadLen();
  return {std::string(base + headLen, frame.GetLen()), std::string(base, headLen + frame.GetLen())};
}

}  // namespace velm_msg
