#pragma once

#include <atomic>

#include "archive/ArchiveServiceImp.h"

namespace Cmm::Archive {

// Whether a class is constructed for the first time. The flag is cleared before the class registers, and
// testing and clearing are two steps on purpose: of two threads in a first construction both may register,
// and then the older definition serves both, or one may go on while the other has not registered yet.
inline bool TakeFirstTime(std::atomic<int>& firstTime) {
  if (!firstTime.load(std::memory_order_relaxed)) return false;
  firstTime.store(0, std::memory_order_relaxed);
  return true;
}

inline CCmmArchiveServiceImp& Service() {
  return *CCmmArchiveServiceImp::GetImp();
}

}  // namespace Cmm::Archive
