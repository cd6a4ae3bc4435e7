#include "common/client/utility/src/CmmLogLine.h"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <iterator>

namespace logging::internal {
namespace {

// Room for the numbers of a prefix.
class TextBuffer {
 public:
  TextBuffer& Put(char c) {
    *m_end++ = c;
    return *this;
  }

  // The decimal number, with zeros in front of it up to `digits`.
  template <std::integral Number>
  TextBuffer& Put(Number number, std::ptrdiff_t digits = 1) {
    char text[kLongestNumber];
    const char* const end = std::to_chars(text, text + kLongestNumber, number).ptr;
    m_end = std::fill_n(m_end, std::max<std::ptrdiff_t>(digits - (end - text), 0), '0');
    m_end = std::copy(static_cast<const char*>(text), end, m_end);
    return *this;
  }

  std::string_view Text() const { return {m_text, static_cast<size_t>(m_end - m_text)}; }

 private:
  static constexpr size_t kLongestNumber = 11;  // of 32 bits, with a sign
  static constexpr size_t kMostNumbers = 9;     // three of the process and six of the time

  char m_text[1 + kMostNumbers * (kLongestNumber + 1) + 2];  // each with a separator
  char* m_end = m_text;
};

void Write(std::ostream& stream, std::string_view text) {
  stream.rdbuf()->sputn(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace

std::string SeverityName(int severity) {
  static constexpr const char* kNames[] = {"DEBUG", "INFO", "WARNING", "ERROR", "ERROR_REPORT", "FATAL"};
  if (severity < 0) return "VERBOSE" + std::to_string(-static_cast<int64_t>(severity));
  if (severity >= static_cast<int>(std::size(kNames))) return std::to_string(severity);
  return kNames[severity];
}

std::string_view SourceFileName(std::string_view file) {
  size_t separator = file.rfind('\\');
  if (separator == std::string_view::npos) separator = file.rfind('/');
  // Where there is no separator the name begins behind the first character all the same: call sites pass
  // full paths.
  const size_t start = separator == std::string_view::npos ? 1 : separator + 1;
  return file.substr(std::min(start, file.size()));
}

void StreamLogPrefix(std::ostream& stream, const LogPrefix& prefix) {
  // Composed apart: a line costs hardly more than its one write, and formatted output would be felt.
  TextBuffer head;
  head.Put('[');
  if (prefix.processId) head.Put(*prefix.processId).Put(':');
  if (prefix.threadId) head.Put(*prefix.threadId).Put(':');
  if (prefix.localTime) {
    const Cmm::Time::Exploded& time = *prefix.localTime;
    head.Put(time.month, 2).Put('-').Put(time.day_of_month, 2).Put('/');
    head.Put(time.hour, 2).Put(':').Put(time.minute, 2).Put(':').Put(time.second, 2);
    head.Put('.').Put(time.millisecond, 3).Put(':');
    stream.fill('0');
  }
  if (prefix.tickCount) head.Put(*prefix.tickCount).Put(':');
  TextBuffer tail;
  tail.Put('(').Put(prefix.line).Put(')').Put(']').Put(' ');

  Write(stream, head.Text());
  Write(stream, SeverityName(prefix.severity));
  Write(stream, ":");
  Write(stream, SourceFileName(prefix.file));
  Write(stream, tail.Text());
}

}  // namespace logging::internal
