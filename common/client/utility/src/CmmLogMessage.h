#pragma once

#include <cstddef>
#include <sstream>
#include <string>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmLogging.h"

namespace logging {

// The text of a comparison that failed, as MakeCheckOpString makes it.
class CMM_EXPORT CheckOpString {
 public:
  explicit CheckOpString(std::string* str);  // stays the caller's; null for an empty text
  const std::string* str() const;

 private:
  std::string* str_;
};

// "a == b (1 vs. 2)" for the expression "a == b": a new string, which the caller deletes.
template <typename First, typename Second>
std::string* MakeCheckOpString(const First& first, const Second& second, const char* expression) {
  std::ostringstream text;
  text << expression << " (" << first << " vs. " << second << ")";
  return new std::string(text.str());
}

// One line of the log:
//
//   logging::LogMessage(__FILE__, __LINE__, logging::LOG_WARNING).stream() << "no answer after " << n;
//   "[1234:5678:03-07/09:05:01.042:WARNING:channel.cc(77)] no answer after 3\n"
//
// The line goes on its way when the object ends, whatever its severity: a call site that filters asks
// GetMinLogLevel() first. It leaves the thread's last error as it was, ends nothing and throws nothing.
class CMM_EXPORT LogMessage {
 public:
  // `file` is borrowed; null stands for "UNKNOWN-FILE". The severity is LOG_INFO where none is given,
  // and LOG_FATAL for a failed check, whose text is put in front.
  LogMessage(const char* file, int line);
  LogMessage(const char* file, int line, int severity);
  LogMessage(const char* file, int line, int severity, int ignored);
  LogMessage(const char* file, int line, const CheckOpString& result);
  LogMessage(const char* file, int line, int severity, const CheckOpString& result);
  LogMessage(const LogMessage&) = delete;
  LogMessage& operator=(const LogMessage&) = delete;
  ~LogMessage();

  std::ostream& stream();  // prints booleans as words

  // Keeps the thread's last error over a scope.
  class CMM_EXPORT SaveLastError {
   public:
    SaveLastError();
    SaveLastError(const SaveLastError&) = delete;
    SaveLastError& operator=(const SaveLastError&) = delete;
    ~SaveLastError();

    unsigned long get_error() const;

   private:
    unsigned long last_error_;
  };

 private:
  void Init();

  const int severity_;
  std::ostringstream stream_;
  size_t message_start_ = 0;  // where the text behind the prefix begins
  const char* const file_;
  const int line_;
  const SaveLastError last_error_;
};

}  // namespace logging
