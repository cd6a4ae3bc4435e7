#include "tools/common/Words.h"

#include <algorithm>
#include <charconv>
#include <numeric>

#include "tools/common/UsageError.h"

namespace velm_tools {
namespace {

constexpr std::string_view kBlanks = " \t";

// How many characters must be inserted, deleted or replaced to turn one word into the other.
size_t EditDistance(std::string_view left, std::string_view right) {
  std::vector<size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < left.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < right.size(); ++j) {
      const size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::vector<std::string> SplitWords(std::string_view line) {
  std::vector<std::string> words;
  bool inWord = false;
  bool inQuotes = false;
  for (size_t at = 0; at < line.size(); ++at) {
    const char c = line[at];
    if (!inQuotes && kBlanks.find(c) != std::string_view::npos) {
      inWord = false;
      continue;
    }
    if (!inWord) words.emplace_back();
    inWord = true;
    const bool escapes = inQuotes && c == '\\' && at + 1 < line.size();
    if (escapes && (line[at + 1] == '"' || line[at + 1] == '\\'))
      words.back() += line[++at];
    else if (c == '"')
      inQuotes = !inQuotes;
    else
      words.back() += c;
  }
  if (inQuotes) throw UsageError("a quotation mark is not closed");
  return words;
}

std::pair<std::string_view, std::string_view> SplitFirstWord(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  const size_t end = std::min(line.find_first_of(kBlanks), line.size());
  const size_t rest = std::min(line.find_first_not_of(kBlanks, end), line.size());
  return {line.substr(0, end), line.substr(rest)};
}

std::string_view Trim(std::string_view text) {
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

int64_t ParseInteger(std::string_view text, int64_t lowest, int64_t highest, std::string_view what) {
  const auto error = [&](std::string_view problem) {
    return UsageError(std::string(what) + " '" + std::string(text) + "' " + std::string(problem));
  };
  std::string_view digits = text;
  const bool negative = digits.starts_with('-');
  if (negative) digits.remove_prefix(1);
  const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
  if (hexadecimal) digits.remove_prefix(2);
  uint64_t magnitude = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, code] = std::from_chars(digits.data(), end, magnitude, hexadecimal ? 16 : 10);
  if (stop != end || (code != std::errc() && code != std::errc::result_out_of_range))
    throw error("is not a number");
  const uint64_t limit =
      negative ? uint64_t{0} - static_cast<uint64_t>(lowest) : static_cast<uint64_t>(highest);
  const bool fits = code == std::errc() && magnitude <= limit && (!negative || lowest < 0 || magnitude == 0);
  const int64_t value =
      negative ? static_cast<int64_t>(uint64_t{0} - magnitude) : static_cast<int64_t>(magnitude);
  if (!fits || value < lowest || value > highest)
    throw error("is out of range: " + std::to_string(lowest) + " to " + std::to_string(highest));
  return value;
}

std::string_view ClosestWord(std::string_view word, const std::vector<std::string_view>& candidates) {
  std::string_view best;
  size_t bestDistance = std::max<size_t>(1, word.size() / 3) + 1;
  for (const std::string_view candidate : candidates) {
    const size_t distance = EditDistance(word, candidate);
    if (distance >= bestDistance) continue;
    best = candidate;
    bestDistance = distance;
  }
  return best;
}

std::string Hint(std::string_view word, const std::vector<std::string_view>& candidates) {
  const std::string_view closest = ClosestWord(word, candidates);
  return closest.empty() ? std::string() : ", did you mean '" + std::string(closest) + "'?";
}

}  // namespace velm_tools
