#pragma once

// From values to messages.

#include <string>
#include <string_view>
#include <vector>

#include "archive/catalogue/catalogue.h"

namespace velm_msg {

using Cmm::Archive::CatalogueMessage;
using Cmm::Archive::MessageClass;

struct Encoded {
  std::string text;   // one XML element and a line feed
  std::string frame;  // header and text, as they travel
};

// Reads "name=value", where a value runs to the end and is UTF-8. Throws UsageError for a field that the
// class does not have, one that is set twice, and a value that is none of its type.
void SetFields(CatalogueMessage& message, const std::vector<std::string>& assignments);

// The messages of a JSON text: one object, or one a line. An object is what Decode gives,
// {"class":C,"fields":{...}}, or only the fields when `messageClass` is not null. Throws std::runtime_error.
std::vector<Encoded> EncodeJson(std::string_view json, const MessageClass* messageClass);

// Throws std::runtime_error when the message cannot be built, and when a receiver would not read the same
// values from what was built.
Encoded Encode(CatalogueMessage& message);

}  // namespace velm_msg
