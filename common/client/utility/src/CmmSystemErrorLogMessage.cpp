#include "common/client/utility/src/CmmSystemErrorLogMessage.h"

#include <windows.h>

#include <string_view>

namespace logging {

SystemErrorLogMessage::SystemErrorLogMessage(const char* file, int line, int severity, uint32_t error,
                                             const char* module)
    : error_(error), module_(module), log_message_(file, line, severity) {}

SystemErrorLogMessage::~SystemErrorLogMessage() {
  DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  const HMODULE module = module_ ? GetModuleHandleA(module_) : nullptr;
  if (module) flags |= FORMAT_MESSAGE_FROM_HMODULE;
  char buffer[256];
  const DWORD length = FormatMessageA(flags, module, error_, 0, buffer, sizeof buffer, nullptr);
  if (length == 0) {
    const DWORD formatError = GetLastError();
    stream() << ": Error " << formatError << " while retrieving error " << error_;
    return;
  }
  const std::string_view text(buffer, length);
  stream() << ": " << text.substr(0, text.find_last_not_of(" \t\n\v\f\r") + 1);
}

}  // namespace logging
