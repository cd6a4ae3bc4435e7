#include "archive/catalogue/catalogue.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <type_traits>

#include "common/client/utility/src/CmmConvert.h"

namespace Cmm::Archive {
namespace {

using WideText = A2BT<65001, char, wchar_t>;
using Utf8Text = A2BT<65001, wchar_t, char>;

// Calls `function` with a null pointer to the C++ type of a field.
template <typename Function>
auto WithType(MessageFieldType type, Function function) {
  switch (type) {
    case MessageFieldType::i32:
      return function(static_cast<const int*>(nullptr));
    case MessageFieldType::u32:
      return function(static_cast<const unsigned*>(nullptr));
    case MessageFieldType::i64:
      return function(static_cast<const int64_t*>(nullptr));
    case MessageFieldType::u64:
      return function(static_cast<const uint64_t*>(nullptr));
    case MessageFieldType::str:
      return function(static_cast<const CStringA*>(nullptr));
    default:
      return function(static_cast<const CStringW*>(nullptr));
  }
}

std::string TextOf(const CStringA& value) {
  return value;
}

std::string TextOf(const CStringW& value) {
  return Utf8Text(value.c_str(), value.GetLength());
}

template <typename Number>
std::string TextOf(Number value) {
  return std::to_string(value);
}

bool FromText(std::string_view text, CStringA& value) {
  value.Assign(text.data(), text.size());
  return true;
}

bool FromText(std::string_view text, CStringW& value) {
  value = WideText(text.data(), text.size());
  return true;
}

template <typename Number>
bool FromText(std::string_view text, Number& value) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end;
}

template <typename Predicate>
std::vector<const MessageClass*> FindMessages(Predicate predicate) {
  std::vector<const MessageClass*> found;
  for (const MessageClass& messageClass : MessageClasses()) {
    if (predicate(messageClass)) found.push_back(&messageClass);
  }
  return found;
}

}  // namespace

const char* ToString(MessageFieldType type) {
  constexpr const char* kNames[] = {"i32", "u32", "i64", "u64", "str", "wstr"};
  return kNames[static_cast<size_t>(type)];
}

const MessageClass* FindMessageClass(std::string_view className) {
  const auto found = FindMessages([=](const MessageClass& c) { return c.className == className; });
  return found.empty() ? nullptr : found.front();
}

std::vector<const MessageClass*> FindMessagesById(int id) {
  return FindMessages([=](const MessageClass& c) { return c.id == id; });
}

std::vector<const MessageClass*> FindMessagesByWireName(std::string_view wireName) {
  return FindMessages([=](const MessageClass& c) { return c.wireName == wireName; });
}

CatalogueMessage::CatalogueMessage(const MessageClass& messageClass)
    : m_class(messageClass), m_object(messageClass.make()) {}

const MessageField& CatalogueMessage::Field(size_t position) const {
  if (position >= m_class.fields.size()) throw std::out_of_range("the message has no such field");
  return m_class.fields[position];
}

MessageFieldValue CatalogueMessage::GetField(size_t position) const {
  const MessageField& field = Field(position);
  return WithType(field.type, [&]<typename T>(const T*) {
    return MessageFieldValue(std::in_place_type<T>, *static_cast<const T*>(field.get(*m_object)));
  });
}

bool CatalogueMessage::SetField(size_t position, const MessageFieldValue& value) {
  const MessageField& field = Field(position);
  if (value.index() != static_cast<size_t>(field.type)) return false;
  std::visit([&](const auto& typed) { field.set(*m_object, &typed); }, value);
  return true;
}

std::string CatalogueMessage::GetFieldText(size_t position) const {
  return std::visit([](const auto& value) { return TextOf(value); }, GetField(position));
}

bool CatalogueMessage::SetFieldText(size_t position, std::string_view text) {
  return WithType(Field(position).type, [&]<typename T>(const T*) {
    T value{};
    return FromText(text, value) && SetField(position, value);
  });
}

std::optional<size_t> CatalogueMessage::FindField(std::string_view name) const {
  const auto fields = m_class.fields;
  const auto found =
      std::find_if(fields.begin(), fields.end(), [=](const MessageField& f) { return f.name == name; });
  if (found == fields.end()) return std::nullopt;
  return static_cast<size_t>(found - fields.begin());
}

}  // namespace Cmm::Archive
