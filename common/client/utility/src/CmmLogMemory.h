#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/client/utility/src/CmmLock.h"

namespace logging::internal {

// Log lines that wait for a file. Any thread may use it; its lock is the innermost one of the log.
class LogMemory {
 public:
  // Keeps the line, as long as fewer than the limit have been kept since the process began; later lines
  // are dropped.
  void Append(std::string_view line);

  // The lines so far, in one piece; they are not kept here any more, but still count.
  std::string Take();

 private:
  static constexpr uint32_t memory_line_limit = 1024;

  Cmm::CCritical memory_lock;
  std::string memory_buffer;       // guarded by memory_lock
  uint32_t memory_line_count = 0;  // guarded by memory_lock
};

}  // namespace logging::internal
