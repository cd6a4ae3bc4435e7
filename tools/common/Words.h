#pragma once

// How a tool reads what its user writes: words, numbers and key=value pairs. All throw UsageError.

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velm_tools {

// Words are separated by blanks. Within double quotes blanks belong to the word, \" is a quotation mark
// and \\ a backslash; elsewhere a backslash is itself.
std::vector<std::string> SplitWords(std::string_view line);

// The first word of a line, and what follows the blanks behind it, as it stands.
std::pair<std::string_view, std::string_view> SplitFirstWord(std::string_view line);

// Without the blanks at both ends.
std::string_view Trim(std::string_view text);

// A decimal number, or a hexadecimal one that begins with 0x. `what` names it in the error.
int64_t ParseInteger(std::string_view text, int64_t lowest, int64_t highest, std::string_view what);

template <typename Number>
Number ParseNumber(std::string_view text, std::string_view what) {
  static_assert(sizeof(Number) <= sizeof(uint32_t));
  return static_cast<Number>(
      ParseInteger(text, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max(), what));
}

// The candidate closest to a mistyped word, if one is close.
std::string_view ClosestWord(std::string_view word, const std::vector<std::string_view>& candidates);

// ", did you mean 'audio'?", or nothing.
std::string Hint(std::string_view word, const std::vector<std::string_view>& candidates);

}  // namespace velm_tools
