#pragma once

// CMM_TRACE(a << b) logs what is streamed as a line of severity "VERBOSE2", in a build with invariant checks
// and when the log is that verbose (logging::SetMinLogLevel(-1)). Other builds carry neither text nor test.
#ifdef VELM_INVARIANT_CHECKS

#include "common/client/utility/src/CmmLogMessage.h"

#define CMM_TRACE(streamed)                                                     \
  do {                                                                          \
    constexpr int verbosity = 2;                                                \
    if (logging::GetVlogVerbosity() >= verbosity)                               \
      logging::LogMessage(__FILE__, __LINE__, -verbosity).stream() << streamed; \
  } while (false)

#else
#define CMM_TRACE(streamed) static_cast<void>(0)
#endif
