#pragma once

// The catalogue as its reader asks for it: by a class, an id or a wire name, and by a word in any of them.

#include <string>
#include <string_view>
#include <vector>

#include "archive/catalogue/catalogue.h"

namespace velm_msg {

using Cmm::Archive::MessageClass;

// Those that `word` names: a class or a wire name exactly as it is spelled, or an id, decimal or with 0x.
// Throws UsageError when there is none.
std::vector<const MessageClass*> FindNamed(std::string_view word);

// The one that `word` names. Throws UsageError also when it names several, and tells which.
const MessageClass& FindTheOne(std::string_view word);

// Those with `word` in the class, the wire name or a field, in any case of ASCII letters, or as the id.
std::vector<const MessageClass*> Search(std::string_view word);

std::vector<std::string_view> Families();

// Throws UsageError for an unknown family.
std::vector<const MessageClass*> OfFamily(std::string_view family);

std::string Line(const MessageClass& messageClass);                   // id, class and wire name
std::vector<std::string> Lines(const MessageClass& messageClass);     // all there is to tell
std::string Names(const std::vector<const MessageClass*>& messages);  // "A and B"

}  // namespace velm_msg
