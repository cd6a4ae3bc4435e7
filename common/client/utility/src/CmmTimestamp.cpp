#include "common/client/utility/src/CmmTimestamp.h"

#include <cstdio>

#include "common/client/utility/src/CmmTime.h"

namespace Cmm::internal {

namespace {

struct TimestampFields {
  int year = 0, month = 0, day = 0;
  int hour = 0, minute = 0, second = 0;
  char sign = 0;
  int offsetHours = 0, offsetMinutes = 0;
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Where the scan ends early, the fields behind keep what they had: those of the first scan, even where the
// second one is the one that counts.
TimestampFields Scan(const char* text) {
  TimestampFields f;
  char separator = 0;
  std::sscanf(text, "%4d-%2d-%2dT%2d:%2d:%2d%c%2d%c%2d", &f.year, &f.month, &f.day, &f.hour, &f.minute,
              &f.second, &f.sign, &f.offsetHours, &separator, &f.offsetMinutes);
  if (IsDigit(separator)) {
    std::sscanf(text, "%4d-%2d-%2dT%2d:%2d:%2d%c%2d%2d", &f.year, &f.month, &f.day, &f.hour, &f.minute,
                &f.second, &f.sign, &f.offsetHours, &f.offsetMinutes);
  }
  return f;
}

}  // namespace

int64_t ParseTimestamp(const char* text) {
  const TimestampFields f = Scan(text);
  constexpr int kUnknownDst = -1;
  constexpr int kUtc = 0;
  const CTime moment(f.year, f.month, f.day, f.hour, f.minute, f.second, kUnknownDst, kUtc);
  const int64_t offset = (f.offsetHours * 60 + f.offsetMinutes) * 60;
  if (f.sign == '+') return moment.GetTime() - offset;
  if (f.sign == '-') return moment.GetTime() + offset;
  return moment.GetTime();
}

}  // namespace Cmm::internal
