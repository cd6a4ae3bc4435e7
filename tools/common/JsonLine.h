#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velm_tools {

// One JSON object on one line, with its members in the order in which they were added: what a program
// reads a member at a time and a person from left to right.
class JsonLine {
 public:
  JsonLine& Add(std::string_view key, const Json::Value& value);
  JsonLine& AddArray(std::string_view key, const std::vector<JsonLine>& objects);

  std::string Text() const { return m_members.empty() ? "{}" : m_members + '}'; }

 private:
  void AddKey(std::string_view key);

  std::string m_members;
};

// Compact, on one line, with everything but control characters, quotation marks and backslashes as it
// stands in UTF-8.
std::string ToJson(const Json::Value& value);

// A whole text that is one JSON object or array; none for anything else.
std::optional<Json::Value> ParseJson(std::string_view text);

}  // namespace velm_tools
