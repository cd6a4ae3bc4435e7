#pragma once

// From bytes to messages, and to what is wrong with them.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/catalogue/catalogue.h"
#include "tools/common/JsonLine.h"

namespace velm_msg {

using Cmm::Archive::CatalogueMessage;
using Cmm::Archive::MessageClass;

// One message of the input, or what stands in the place of one.
struct Decoded {
  size_t offset = 0;                           // in the input, of the frame; 0 for every text
  std::optional<int> type;                     // of a frame
  std::string wireName;                        // of the text; empty when there is none
  const MessageClass* messageClass = nullptr;  // null when it cannot be told
  std::vector<Json::Value> values;             // by the fields of the class; empty when it did not parse
  std::vector<std::string> problems;           // why a receiver does not take the message as it should be
  std::vector<std::string> remarks;            // what a receiver passes over

  bool isUnreadable = false;  // one of the problems keeps the text from being read

  bool IsRead() const { return messageClass && !isUnreadable; }
  void Fail(std::string problem) {
    problems.push_back(std::move(problem));
    isUnreadable = true;
  }
};

// Whether bytes begin as a text rather than as a frame's header: with "<", after a byte order mark and
// blanks, and without a zero byte in the first four.
bool LooksLikeText(std::string_view bytes);

// All messages: frames one after another, or the elements of a text. `as` reads them as that class; with
// null each is found by its wire name and, where two share that, by its id and its attributes.
std::vector<Decoded> Decode(std::string_view bytes, const MessageClass* as);

// Whether the archive can serve the class in this process. Of two classes with one wire name only the one
// that is constructed first can be built and read; the reason why not is for the user.
std::optional<std::string> WhyUnusable(const MessageClass& messageClass);

std::vector<std::string> ToLines(const Decoded& decoded);
std::string ToJsonText(const Decoded& decoded);

}  // namespace velm_msg
