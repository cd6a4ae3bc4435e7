#pragma once

#include <string>

// Reports "Check failed: ", the condition as written and ". " when the condition does not hold; the caller
// goes on either way. Only a build with invariant checks evaluates it.
#ifdef VELM_INVARIANT_CHECKS
#define CMM_CHECK(condition) \
  ((condition) ? void()      \
               : ::Cmm::internal::ReportFailedCheck(__FILE__, __LINE__, "Check failed: " #condition ". "))
#else
#define CMM_CHECK(condition) static_cast<void>(sizeof((condition) ? 1 : 0))
#endif

namespace Cmm::internal {

// Logs `text` as a line of severity "FATAL" of the place `file`(`line`), which goes to stderr in any case.
// Ends nothing, and leaves the thread's last error as it was.
void ReportFailedCheck(const char* file, int line, const std::string& text);

}  // namespace Cmm::internal
