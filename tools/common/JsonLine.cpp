#include "tools/common/JsonLine.h"

#include <json/reader.h>
#include <json/writer.h>

#include <exception>
#include <memory>

namespace velm_tools {

JsonLine& JsonLine::Add(std::string_view key, const Json::Value& value) {
  AddKey(key);
  m_members += ToJson(value);
  return *this;
}

JsonLine& JsonLine::AddArray(std::string_view key, const std::vector<JsonLine>& objects) {
  AddKey(key);
  char separator = '[';
  for (const JsonLine& object : objects) {
    m_members += separator + object.Text();
    separator = ',';
  }
  m_members += objects.empty() ? "[]" : "]";
  return *this;
}

void JsonLine::AddKey(std::string_view key) {
  m_members += m_members.empty() ? '{' : ',';
  m_members += ToJson(std::string(key));
  m_members += ':';
}

std::string ToJson(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["emitUTF8"] = true;
  return Json::writeString(builder, value);
}

std::optional<Json::Value> ParseJson(std::string_view text) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value value;
  try {
    if (reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) return value;
  } catch (const std::exception&) {
    // Nested deeper than jsoncpp reads.
  }
  return std::nullopt;
}

}  // namespace velm_tools
