#include "common/client/utility/src/CmmCheck.h"

#include <windows.h>

#include <cstdio>
#include <string_view>

namespace Cmm::internal {

void ReportFailedCheck(const char* file, int line, const std::string& text) {
  const DWORD lastError = GetLastError();
  const std::string_view path(file);
  const std::string name(path.substr(path.find_last_of("\\/") + 1));
  std::fprintf(stderr, "[FATAL:%s(%d)] %s\n", name.c_str(), line, text.c_str());
  std::fflush(stderr);
  SetLastError(lastError);
}

}  // namespace Cmm::internal
