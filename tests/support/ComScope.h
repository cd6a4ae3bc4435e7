#pragma once

#include <objbase.h>

namespace velm_test {

// COM on this thread, which callers of the library bring along.
class ComScope {
 public:
  ComScope() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;
  ~ComScope() { CoUninitialize(); }
};

}  // namespace velm_test
