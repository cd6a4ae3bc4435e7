#include "common/client/utility/src/CmmLogMemory.h"

#include <algorithm>

namespace logging::internal {
namespace {

constexpr size_t kSmallestGrowth = 4096;

}  // namespace

void LogMemory::Append(std::string_view line) {
  const Cmm::CAutoLock lock(memory_lock);
  if (memory_line_count >= memory_line_limit) return;
  const size_t needed = memory_buffer.size() + line.size();
  if (needed > memory_buffer.capacity())
    memory_buffer.reserve(std::max(needed, memory_buffer.capacity() + kSmallestGrowth));
  memory_buffer += line;
  ++memory_line_count;
}

std::string LogMemory::Take() {
  std::string taken;
  const Cmm::CAutoLock lock(memory_lock);
  taken.swap(memory_buffer);
  return taken;
}

}  // namespace logging::internal
