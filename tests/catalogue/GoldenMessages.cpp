#include "tests/catalogue/GoldenMessages.h"

#include <json/json.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace catalogue_testing {
namespace {

using namespace Cmm::Archive;

[[noreturn]] void Fail(const std::string& reason) {
  std::fprintf(stderr, "%s: %s\n", CATALOGUE_WIRE_TEXTS, reason.c_str());
  std::exit(EXIT_FAILURE);
}

GoldenMessage FromJson(const Json::Value& value) {
  GoldenMessage message{value["class"].asString(),     value["id"].asInt(),
                        value["wire_name"].asString(), {},
                        value["untouched"].asString(), value["filled"].asString()};
  for (const Json::Value& field : value["fields"])
    message.fields.push_back({field[0].asString(), field[1].asString(), field[2].asString()});
  return message;
}

std::vector<GoldenMessage> ReadFile() {
  std::ifstream file(CATALOGUE_WIRE_TEXTS, std::ios::binary);
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  std::vector<GoldenMessage> messages;
  for (std::string line; std::getline(file, line);) {
    Json::Value value;
    std::string errors;
    if (!reader->parse(line.data(), line.data() + line.size(), &value, &errors)) Fail(errors);
    messages.push_back(FromJson(value));
  }
  if (messages.empty()) Fail("no messages");
  return messages;
}

Cmm::CStringW Wide(const std::string& utf8) {
  std::wstring wide(utf8.size(), L'\0');
  wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(),
                                                      static_cast<int>(utf8.size()), wide.data(),
                                                      static_cast<int>(wide.size()))));
  return wide;
}

}  // namespace

const std::vector<GoldenMessage>& GoldenMessages() {
  static const std::vector<GoldenMessage> messages = ReadFile();
  return messages;
}

const GoldenMessage& Golden(const std::string& className) {
  const auto& messages = GoldenMessages();
  const auto found = std::find_if(messages.begin(), messages.end(), [&](const GoldenMessage& message) {
    return message.className == className;
  });
  if (found == messages.end()) Fail("no message " + className);
  return *found;
}

MessageFieldValue ValueOf(const GoldenField& field) {
  if (field.type == "i32") return static_cast<int>(std::stoll(field.text));
  if (field.type == "u32") return static_cast<unsigned>(std::stoull(field.text));
  if (field.type == "i64") return static_cast<int64_t>(std::stoll(field.text));
  if (field.type == "u64") return static_cast<uint64_t>(std::stoull(field.text));
  if (field.type == "str") return Cmm::CStringA(field.text.c_str());
  return Wide(field.text);
}

void Fill(CatalogueMessage& message, const GoldenMessage& golden) {
  for (size_t i = 0; i < golden.fields.size(); ++i) {
    if (!message.SetField(i, ValueOf(golden.fields[i])))
      Fail(golden.className + " takes no " + golden.fields[i].name);
  }
}

}  // namespace catalogue_testing
