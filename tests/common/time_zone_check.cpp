// time_zone_check EXPECTED...: compares what the library says about the time zone of this process with the
// arguments: the offset, the two keys, the two zone names; then the noon in UTC of 2021-07-04 in local time
// by Time, its local midnight, and the same noon by CTime. Fails and tells the differences if there are any.

#include <cstdio>
#include <string>
#include <vector>

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmTime.h"
#include "common/client/utility/src/CmmTimeValue.h"
#include "common/client/utility/src/CmmTimeZone.h"

namespace {

constexpr int64_t kNoon = 1625400000;

std::string Utf8(const Cmm::CStringT<wchar_t>& text) {
  return text.IsEmpty() ? "none" : Cmm::A2BT<65001, wchar_t, char>(text.c_str()).c_str();
}

std::string LocalText(const Cmm::Time& time) {
  Cmm::Time::Exploded t;
  time.LocalExplode(&t);
  char text[100];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d day %d", t.year, t.month,
                t.day_of_month, t.hour, t.minute, t.second, t.millisecond, t.day_of_week);
  return text;
}

std::string LocalText(const Cmm::CTime& time) {
  struct tm t = {};
  if (!time.GetlocalTm2(t)) return "no local time";
  char text[100];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d day %d, %d", t.tm_year + 1900, t.tm_mon + 1,
                t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.tm_wday, t.tm_yday);
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> expected(argv + 1, argv + argc);
  const std::vector<std::string> found = {
      std::to_string(Cmm::GetTimeZoneOffsetMinutes()),
      Utf8(Cmm::GetCurrentTimeZone_DisplayName(1)),
      Utf8(Cmm::GetCurrentTimeZone_DisplayName(0)),
      Utf8(Cmm::GetCurrentTimeZone()),
      Utf8(Cmm::GetCurrentTimeZoneOfVELM()),
      LocalText(Cmm::Time::FromTimeT(kNoon)),
      LocalText(Cmm::Time::FromTimeT(kNoon).LocalMidnight()),
      LocalText(Cmm::CTime(kNoon)),
  };
  if (found == expected) return 0;
  for (size_t i = 0; i < found.size(); ++i)
    std::printf("expected \"%s\", found \"%s\"\n", i < expected.size() ? expected[i].c_str() : "",
                found[i].c_str());
  return 1;
}
