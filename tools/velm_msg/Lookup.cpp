#include "tools/velm_msg/Lookup.h"

#include <algorithm>

#include "tools/common/UsageError.h"
#include "tools/common/Words.h"

namespace velm_msg {
namespace {

using Cmm::Archive::MessageClasses;
using Cmm::Archive::MessageField;
using velm_tools::UsageError;

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool Contains(std::string_view text, std::string_view word) {
  const auto same = [](char a, char b) { return Lower(a) == Lower(b); };
  return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

bool IsNumber(std::string_view word) {
  return !word.empty() && word.front() >= '0' && word.front() <= '9';
}

template <typename Predicate>
std::vector<const MessageClass*> Select(Predicate predicate) {
  std::vector<const MessageClass*> found;
  for (const MessageClass& message : MessageClasses())
    if (predicate(message)) found.push_back(&message);
  return found;
}

std::string HintAtName(std::string_view word) {
  std::vector<std::string_view> names;
  for (const MessageClass& message : MessageClasses()) {
    names.push_back(message.className);
    names.push_back(message.wireName);
  }
  return velm_tools::Hint(word, names);
}

}  // namespace

std::vector<const MessageClass*> FindNamed(std::string_view word) {
  std::vector<const MessageClass*> found;
  if (IsNumber(word)) {
    found = Cmm::Archive::FindMessagesById(velm_tools::ParseNumber<int>(word, "message id"));
    if (found.empty()) throw UsageError("no message has the id " + std::string(word));
    return found;
  }
  if (const MessageClass* message = Cmm::Archive::FindMessageClass(word)) return {message};
  found = Cmm::Archive::FindMessagesByWireName(word);
  if (found.empty()) throw UsageError("no message is called '" + std::string(word) + "'" + HintAtName(word));
  return found;
}

const MessageClass& FindTheOne(std::string_view word) {
  const std::vector<const MessageClass*> found = FindNamed(word);
  if (found.size() == 1) return *found.front();
  throw UsageError("'" + std::string(word) + "' is shared by " + Names(found) + ": name the class");
}

std::vector<const MessageClass*> Search(std::string_view word) {
  return Select([=](const MessageClass& message) {
    return std::to_string(message.id) == word || Contains(message.className, word) ||
           Contains(message.wireName, word) ||
           std::ranges::any_of(message.fields,
                               [=](const MessageField& field) { return Contains(field.name, word); });
  });
}

std::vector<std::string_view> Families() {
  std::vector<std::string_view> families;
  for (const MessageClass& message : MessageClasses())
    if (families.empty() || families.back() != message.family) families.push_back(message.family);
  return families;
}

std::vector<const MessageClass*> OfFamily(std::string_view family) {
  std::vector<const MessageClass*> found =
      Select([=](const MessageClass& message) { return message.family == family; });
  if (found.empty())
    throw UsageError("no family is called '" + std::string(family) + "'" +
                     velm_tools::Hint(family, Families()) + "; 'velm_msg families' lists them");
  return found;
}

std::string Line(const MessageClass& message) {
  return std::to_string(message.id) + ' ' + message.className + ' ' + message.wireName;
}

std::vector<std::string> Lines(const MessageClass& message) {
  std::vector<std::string> lines{
      "class      " + std::string(message.className), "id         " + std::to_string(message.id),
      "wire name  " + std::string(message.wireName), "family     " + std::string(message.family)};
  for (const MessageField& field : message.fields)
    lines.push_back("field      " + std::string(ToString(field.type)) + ' ' + field.name);
  if (message.fields.empty()) lines.emplace_back("no fields");
  return lines;
}

std::string Names(const std::vector<const MessageClass*>& messages) {
  std::string names;
  for (const MessageClass* message : messages) {
    if (!names.empty()) names += message == messages.back() ? " and " : ", ";
    names += message->className;
  }
  return names;
}

}  // namespace velm_msg
