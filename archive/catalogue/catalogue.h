#pragma once

// The message catalogue as data: every message by id, wire name or class, its fields, and a factory. It is
// for tools and tests that treat all messages alike, and no part of the DLL; code that knows which message it
// handles includes the header of its family.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "archive/MessageTemplate.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm::Archive {

// In the order of the alternatives of MessageFieldValue.
enum class MessageFieldType { i32, u32, i64, u64, str, wstr };

using MessageFieldValue = std::variant<int, unsigned, int64_t, uint64_t, CStringA, CStringW>;

// The type as the table of messages writes it, such as "u32".
const char* ToString(MessageFieldType type);

// One field of a message class.
struct MessageField {
  const char* name;
  MessageFieldType type;

  // Through Get_X and Set_X. `message` must be of the class that the field belongs to, and the value of the
  // field's C++ type. CatalogueMessage sees to both.
  const void* (*get)(CmmMessageTemplate_0& message);
  void (*set)(CmmMessageTemplate_0& message, const void* value);
};

struct MessageClass {
  const char* family;
  int id;
  const char* className;
  const char* wireName;
  std::span<const MessageField> fields;  // in the order of the wire
  std::unique_ptr<CmmMessageTemplate_0> (*make)();
};

// All of them, family by family.
std::span<const MessageClass> MessageClasses();

const MessageClass* FindMessageClass(std::string_view className);  // null when there is none
// In the order of MessageClasses(). Four ids have two messages each, and one wire name has two.
std::vector<const MessageClass*> FindMessagesById(int id);
std::vector<const MessageClass*> FindMessagesByWireName(std::string_view wireName);

// A message object of a class that is known at run time only, with its fields by their position. A position
// at or past the number of fields throws std::out_of_range. Used on one thread, as every message.
class CatalogueMessage {
 public:
  explicit CatalogueMessage(const MessageClass& messageClass);

  const MessageClass& Class() const { return m_class; }
  CmmMessageTemplate_0& Object() { return *m_object; }

  MessageFieldValue GetField(size_t position) const;
  bool SetField(size_t position, const MessageFieldValue& value);  // false: the value is of another type

  // The value as it stands in the text of a message before escaping: decimal digits, or UTF-8.
  std::string GetFieldText(size_t position) const;
  // False, and nothing changes, when the text is no number of the field's type. Text for a string is UTF-8.
  bool SetFieldText(size_t position, std::string_view text);

  // The position of a field of exactly that name.
  std::optional<size_t> FindField(std::string_view name) const;

 private:
  const MessageField& Field(size_t position) const;

  const MessageClass& m_class;
  std::unique_ptr<CmmMessageTemplate_0> m_object;
};

}  // namespace Cmm::Archive
