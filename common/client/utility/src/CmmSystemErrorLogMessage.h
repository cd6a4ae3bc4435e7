#pragma once

#include <cstdint>

#include "common/client/utility/src/CmmLogMessage.h"

namespace logging {

// A line of the log that ends in ": " and the system's text for an error code, or that of a module which
// has texts of its own:
//
//   SystemErrorLogMessage(__FILE__, __LINE__, LOG_ERROR, GetLastError()).stream() << "open " << path;
class SystemErrorLogMessage {
 public:
  // `module` names a module that is loaded, null for none; it is borrowed.
  SystemErrorLogMessage(const char* file, int line, int severity, uint32_t error,
                        const char* module = nullptr);
  SystemErrorLogMessage(const SystemErrorLogMessage&) = delete;
  SystemErrorLogMessage& operator=(const SystemErrorLogMessage&) = delete;
  ~SystemErrorLogMessage();

  std::ostream& stream() { return log_message_.stream(); }

 private:
  const uint32_t error_;
  const char* const module_;
  LogMessage log_message_;
};

}  // namespace logging
