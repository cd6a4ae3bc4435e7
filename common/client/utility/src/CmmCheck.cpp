#include "common/client/utility/src/CmmCheck.h"

#include "common/client/utility/src/CmmLogMessage.h"

namespace Cmm::internal {

void ReportFailedCheck(const char* file, int line, const std::string& text) {
  logging::LogMessage(file, line, logging::LOG_FATAL).stream() << text;
}

}  // namespace Cmm::internal
