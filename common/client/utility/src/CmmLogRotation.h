#pragma once

// The arithmetic of a rotating set of log files: a ring of files `DIR\BASE_INDEX.log`, each of a limited
// size, and a file beside them that holds the index of the one in use.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace logging::internal {

// All ones: the size of the current file, or the limit, is not known, and nothing rotates.
inline constexpr uint32_t kUnknownSize = 0xFFFFFFFF;

inline constexpr int kDefaultFileCount = 2;
inline constexpr int kSmallestFileSize = 0x40000;

// What an initialisation makes of the count and the size that it is given.
int EffectiveFileCount(int maxCount);
int EffectiveFileSize(int maxSize);

struct LogDate {
  int year;
  int month;
  int day;
};

// The path of the file `index` of the set, with the date as YYYYMMDD if there is one.
std::wstring LogFilePath(const std::wstring& dir, const std::wstring& base,
                         const std::optional<LogDate>& date, int index);

// The path of the index file of the set.
std::wstring LogIndexFilePath(const std::wstring& dir, const std::wstring& base);

// At most this much of an index file is looked at.
inline constexpr size_t kIndexFileLimit = 32;

// The decimal number that the content of an index file begins with, leading white space aside; held to the
// range of an int, and 0 where there is none.
int ParseLogIndex(std::string_view content);

int NextLogIndex(int index, int fileCount);

// Whether a line of `length` bytes does not fit any more. False when a size is unknown.
bool LineOverflowsFile(uint32_t currentSize, uint32_t length, int maxSize);

}  // namespace logging::internal
