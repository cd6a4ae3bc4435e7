#pragma once

// File versions as the version resource's fixed part holds them.

#include <cstdint>

namespace Cmm {

struct FileVersion {
  uint16_t major = 0;
  uint16_t minor = 0;
  uint16_t third = 0;
  uint16_t fourth = 0;

  friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

// From the words `dwFileVersionMS` and `dwFileVersionLS` of VS_FIXEDFILEINFO.
constexpr FileVersion FileVersionFromWords(uint32_t ms, uint32_t ls) {
  return {static_cast<uint16_t>(ms >> 16), static_cast<uint16_t>(ms), static_cast<uint16_t>(ls >> 16),
          static_cast<uint16_t>(ls)};
}

// Reads the four numbers of a file's version, as they stand, through the version library of the system
// directory. The path is UTF-8 or, where it is not valid UTF-8, in the ANSI code page. False, and nothing
// written, when there is no version to read or a pointer is null.
bool GetFileVersionSafe(const char* utf8Path, uint16_t* major, uint16_t* minor, uint16_t* third,
                        uint16_t* fourth);

}  // namespace Cmm
