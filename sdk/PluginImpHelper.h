#pragma once

#include <cstdint>

#include "host/FileVersion.h"

namespace Velm3rdSDK {

// Reads the version of the client's files as the client's own version rules want it.
class CPluginImpHelper {
 public:
  // Reads the version resource of `path` (ANSI code page) and applies FromThreePartScheme. When there is
  // no version to read, or a pointer is null, the four values stay as they are; the reason is told to the
  // debugger and the log. Any thread.
  static void GetFileVersion(const char* path, uint16_t* major, uint16_t* minor, uint16_t* third,
                             uint16_t* fourth);

  // Some versions of the client number their files in three parts, told by a minor value above 1000:
  // 5.1200.3.4 stands for 5.0.1200.3.
  static constexpr Cmm::FileVersion FromThreePartScheme(const Cmm::FileVersion& version) {
    constexpr uint16_t kLargestMinor = 1000;
    if (version.minor <= kLargestMinor) return version;
    return {version.major, 0, version.minor, version.third};
  }
};

}  // namespace Velm3rdSDK
